#include "storage/storagemod.h"

#include "storage/operation_row.h"
#include "storage/operations/command_access.h"
#include "storage/operations/discover_controllers.h"
#include "storage/operations/discover_drive_cage.h"
#include "storage/operations/discover_expander.h"
#include "storage/operations/discover_non_vaultline_physical_drive.h"
#include "storage/operations/discover_phy.h"
#include "storage/operations/discover_physical_drive.h"
#include "storage/operations/discover_sep.h"
#include "storage/operations/discover_storage_enclosure.h"
#include "storage/operations/read_array_controller_bootable_status.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/operations/read_physical_drive_info.h"
#include "storage/operations/read_ssd_info.h"
#include "storage/operations/write_allowed_controller_discovery.h"
#include "storage/operations/write_cache_settings.h"
#include "storage/operations/write_set_capability_mask.h"
#include "storage/operations/write_storage_reenumerate.h"
#include "storage/vocabulary/operations.h"

namespace Interface::StorageMod {
namespace {

using Core::creatorOf;
using Schema::on;

constexpr Core::OperationRow OPERATIONS[] = {
    on<Schema::ModRoot>(OPERATION_DISCOVER_ARRAY_CONTROLLERS, creatorOf<Operations::DiscoverArrayController>),
    on<Schema::ModRoot>(OPERATION_DISCOVER_FAILED_ARRAY_CONTROLLERS,
                        creatorOf<Operations::DiscoverFailedArrayController>),
    on<Schema::ModRoot>(OPERATION_DISCOVER_HOST_BUS_ADAPTERS, creatorOf<Operations::DiscoverHostBusAdapter>),
    on<Schema::ModRoot>(OPERATION_WRITE_ALLOWED_CONTROLLER_DISCOVERY,
                        creatorOf<Operations::WriteAllowedControllerDiscovery>),
    on<Schema::ModRoot>(OPERATION_WRITE_SET_CAPABILITY_MASK, creatorOf<Operations::WriteSetCapabilityMask>),
    on<Schema::ModRoot>(OPERATION_WRITE_CACHE_SETTINGS, creatorOf<Operations::WriteCacheSettings>),
    on<Schema::ModRoot>(OPERATION_DISCOVER_CACHING_MANAGER),

    on<Schema::CachingManager>(OPERATION_DISCOVER_CACHING_MANAGER_CACHE_VOL),
    on<Schema::CachingManager>(OPERATION_DISCOVER_CACHING_MANAGER_DATA_VOL),
    on<Schema::CachingManager>(OPERATION_DISCOVER_CACHING_MANAGER_CVA),

    on<Schema::Array>(OPERATION_ASSOCIATION_ARRAY_PHYSICAL_DRIVE),
    on<Schema::Array>(OPERATION_DISCOVER_LOGICAL_DRIVES),
    on<Schema::Array>(OPERATION_READ_ARRAY_INFO),
    on<Schema::Array>(OPERATION_WRITE_DEVICE_BLINK),

    on<Schema::ArrayController>(OPERATION_DISCOVER_REMOTE_VOLUMES),
    on<Schema::ArrayController>(OPERATION_DISCOVER_ARRAYS),
    on<Schema::ArrayController>(OPERATION_DISCOVER_EXPANDERS, creatorOf<Operations::DiscoverExpander>),
    on<Schema::ArrayController>(OPERATION_DISCOVER_PHYSICAL_DRIVES,
                                creatorOf<Operations::DiscoverPhysicalDrive>),
    on<Schema::ArrayController>(OPERATION_DISCOVER_SEPS, creatorOf<Operations::DiscoverSEP>),
    on<Schema::ArrayController>(OPERATION_DISCOVER_STORAGE_ENCLOSURES,
                                creatorOf<Operations::DiscoverStorageEnclosure>),
    on<Schema::ArrayController>(OPERATION_DISCOVER_TAPE_DRIVES, creatorOf<Operations::DiscoverTapeDrive>),
    on<Schema::ArrayController>(OPERATION_DISCOVER_PAIRED_CONTROLLERS),
    on<Schema::ArrayController>(OPERATION_READ_ARRAY_CONTROLLER_INFO,
                                creatorOf<Operations::ReadArrayControllerInfo>),
    on<Schema::ArrayController>(OPERATION_READ_BMIC_COMMAND, creatorOf<Operations::ReadBMICCommand>),
    on<Schema::ArrayController>(OPERATION_WRITE_BMIC_COMMAND, creatorOf<Operations::WriteBMICCommand>),
    on<Schema::ArrayController>(Interface::TOLKMod::Device::OPERATION_WRITE_REENUMERATE,
                                creatorOf<Operations::WriteStorageReenumerate>),
    on<Schema::ArrayController>(OPERATION_READ_ARRAY_CONTROLLER_BOOTABLE_STATUS,
                                creatorOf<Operations::ReadArrayControllerBootableStatus>),
    on<Schema::ArrayController>(OPERATION_DISCOVER_EXTERNAL_ARRAY_CONTROLLERS),
    on<Schema::ArrayController>(OPERATION_DISCOVER_STORAGE_VOLUMES),
    on<Schema::ArrayController>(OPERATION_READ_SCSI_COMMAND, creatorOf<Operations::ReadSCSICommand>),
    on<Schema::ArrayController>(OPERATION_WRITE_SCSI_COMMAND, creatorOf<Operations::WriteSCSICommand>),
    on<Schema::ArrayController>(OPERATION_WRITE_DEVICE_BLINK),
    on<Schema::ArrayController>(OPERATION_READ_DEVICE_LED_INFO),
    on<Schema::ArrayController>(OPERATION_WRITE_CACHE_SETTINGS, creatorOf<Operations::WriteCacheSettings>),
    on<Schema::ArrayController>(OPERATION_ASSOCIATION_ARRAY_CONTROLLER_PHYSICAL_DRIVE),

    on<Schema::DriveCage>(OPERATION_DISCOVER_PHYSICAL_DRIVES, creatorOf<Operations::DiscoverPhysicalDrive>),
    on<Schema::DriveCage>(OPERATION_DISCOVER_TAPE_DRIVES, creatorOf<Operations::DiscoverTapeDrive>),
    on<Schema::DriveCage>(OPERATION_WRITE_DEVICE_BLINK),

    on<Schema::Expander>(OPERATION_DISCOVER_PHYS, creatorOf<Operations::DiscoverPhy>),

    on<Schema::LogicalDrive>(OPERATION_DISCOVER_MIRROR_GROUPS),
    on<Schema::LogicalDrive>(OPERATION_DISCOVER_PARITY_GROUPS),
    on<Schema::LogicalDrive>(OPERATION_READ_EXPAND_REBUILD_INFO),
    on<Schema::LogicalDrive>(OPERATION_READ_LOGICAL_DRIVE_INFO),
    on<Schema::LogicalDrive>(OPERATION_READ_SCSI_COMMAND, creatorOf<Operations::ReadSCSICommand>),
    on<Schema::LogicalDrive>(OPERATION_WRITE_SCSI_COMMAND, creatorOf<Operations::WriteSCSICommand>),
    on<Schema::LogicalDrive>(OPERATION_WRITE_DEVICE_BLINK),

    on<Schema::MirrorGroup>(OPERATION_ASSOCIATION_MIRROR_GROUP_PHYSICAL_DRIVE),

    on<Schema::ParityGroup>(OPERATION_ASSOCIATION_PARITY_GROUP_PHYSICAL_DRIVE),

    on<Schema::PhysicalDrive>(OPERATION_READ_PHYSICAL_DRIVE_INFO,
                              creatorOf<Operations::ReadPhysicalDriveInfo>),
    on<Schema::PhysicalDrive>(OPERATION_READ_EXTENDED_INFO, creatorOf<Operations::ReadSSDInfo>),
    on<Schema::PhysicalDrive>(OPERATION_READ_SCSI_COMMAND, creatorOf<Operations::ReadSCSICommand>),
    on<Schema::PhysicalDrive>(OPERATION_WRITE_SCSI_COMMAND, creatorOf<Operations::WriteSCSICommand>),
    on<Schema::PhysicalDrive>(OPERATION_DISCOVER_PHYS, creatorOf<Operations::DiscoverPhy>),
    on<Schema::PhysicalDrive>(OPERATION_ASSOCIATION_PHYSICAL_DRIVE_PHYSICAL_DRIVE),
    on<Schema::PhysicalDrive>(OPERATION_WRITE_DEVICE_BLINK),
    on<Schema::PhysicalDrive>(OPERATION_SEND_ATA_COMMAND, creatorOf<Operations::SendATACommand>),

    on<Schema::NonVaultlinePhysicalDrive>(OPERATION_READ_EXTENDED_INFO, creatorOf<Operations::ReadSSDInfo>),
    on<Schema::NonVaultlinePhysicalDrive>(OPERATION_SEND_ATA_COMMAND, creatorOf<Operations::SendATACommand>),
    on<Schema::NonVaultlinePhysicalDrive>(OPERATION_WRITE_SCSI_COMMAND,
                                          creatorOf<Operations::WriteSCSICommand>),

    on<Schema::SEP>(OPERATION_DISCOVER_PHYS, creatorOf<Operations::DiscoverPhy>),
    on<Schema::SEP>(OPERATION_READ_SCSI_COMMAND, creatorOf<Operations::ReadSCSICommand>),
    on<Schema::SEP>(OPERATION_WRITE_SCSI_COMMAND, creatorOf<Operations::WriteSCSICommand>),

    on<Schema::StorageEnclosure>(OPERATION_DISCOVER_DRIVE_CAGES, creatorOf<Operations::DiscoverDriveCage>),
    on<Schema::StorageEnclosure>(OPERATION_DISCOVER_EXPANDERS, creatorOf<Operations::DiscoverExpander>),
    on<Schema::StorageEnclosure>(OPERATION_DISCOVER_SEPS, creatorOf<Operations::DiscoverSEP>),
    on<Schema::StorageEnclosure>(OPERATION_DISCOVER_NON_VAULTLINE_PHYSICAL_DRIVES,
                                 creatorOf<Operations::DiscoverNonVaultlinePhysicalDrive>),
    on<Schema::StorageEnclosure>(OPERATION_WRITE_DEVICE_BLINK),

    on<Schema::HostBusAdapter>(OPERATION_DISCOVER_STORAGE_ENCLOSURES,
                               creatorOf<Operations::DiscoverStorageEnclosure>),
    on<Schema::HostBusAdapter>(OPERATION_DISCOVER_NON_VAULTLINE_PHYSICAL_DRIVES,
                               creatorOf<Operations::DiscoverNonVaultlinePhysicalDrive>),
    on<Schema::HostBusAdapter>(OPERATION_DISCOVER_STORAGE_VOLUMES),

    on<Schema::StorageVolume>(OPERATION_ASSOCIATION_STORAGE_VOLUME_DEVICE),
    on<Schema::StorageVolume>(OPERATION_DISCOVER_DISK_EXTENTS),

    on<Schema::RemoteVolume>(OPERATION_ASSOCIATION_REMOTE_VOLUME_EXTERNAL_CONTROLLER),
};

}  // namespace

std::span<Core::OperationRow const> operationRows() {
    return OPERATIONS;
}

}  // namespace Interface::StorageMod
