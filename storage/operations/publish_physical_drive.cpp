#include <algorithm>
#include <cstdint>

#include "storage/operations/physical_drive_flags.h"
#include "storage/operations/publish.h"
#include "storage/operations/publish_enclosure.h"
#include "storage/operations/read_physical_drive_info.h"
#include "storage/schema/drives.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/physical_drive.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::PhysicalDrive;
namespace Controller = Interface::StorageMod::ArrayController;
using Status = Records::PHYSICAL_DRIVE_STATUS;

#define KSL_END(member) KSL_MEMBER_END(PHYSICAL_DRIVE_STATUS, member)

constexpr unsigned WWID_SIZE = 8;
/// A temperature, a box and a bay that aren't known.
constexpr std::uint8_t UNKNOWN = 0xFF;
/// A rotation rate that stands for no rotation; 0 is one that isn't told.
constexpr std::uint32_t NON_ROTATING = 1;
/// From so many blocks on a capacity has no room in 32 bits.
constexpr std::uint64_t SMALL_CAPACITY_END = 0x100000000;

Common::string unlessUnknown(std::uint8_t value) {
    return value == UNKNOWN ? Common::string() : decimalText(value);
}

Common::string wwidText(Status const& record) {
    bool const isTold =
        std::any_of(record.bWWID, record.bWWID + WWID_SIZE, [](std::uint8_t byte) { return byte != 0; });
    return isTold ? Conversion::arrayToString<unsigned char>(record.bWWID, WWID_SIZE, "") : Common::string();
}

constexpr PublishRow<Status> DRIVE_ROWS[] = {
    {Names::ATTR_NAME_SCSI_BUS, [](auto& r) { return decimalText(r.bSCSIBus); }, KSL_END(bSCSIBus)},
    {Names::ATTR_NAME_SCSI_ID, [](auto& r) { return decimalText(r.bSCSIID); }, KSL_END(bSCSIID)},
    {Names::ATTR_NAME_BLOCK_SIZE, [](auto& r) { return decimalText(r.wBlockSize); }, KSL_END(wBlockSize)},
    {Names::ATTR_NAME_DRIVE_MODEL, [](auto& r) { return memberText(r.sDriveModel); }, KSL_END(sDriveModel)},
    {Names::ATTR_NAME_SERIAL_NUMBER, [](auto& r) { return memberText(r.sDriveSerialNumber); },
     KSL_END(sDriveSerialNumber)},
    {Names::ATTR_NAME_FIRMWARE_REVISION, [](auto& r) { return memberText(r.sDriveFirmwareRevision); },
     KSL_END(sDriveFirmwareRevision)},
    {Names::ATTR_NAME_LAST_FAILURE_REASON,
     [](auto& r) { return Schema::PhysicalDrive::lastFailureReason(r.bLastFailureReason); },
     KSL_END(bLastFailureReason)},
    {Names::ATTR_NAME_PORT, [](auto& r) { return portText(memberText(r.sPhysicalPort), r.bPhysicalBox); },
     KSL_END(bPhysicalBox)},
    {Names::ATTR_NAME_BOX, [](auto& r) { return unlessUnknown(r.bPhysicalBox); }, KSL_END(bPhysicalBox)},
    {Names::ATTR_NAME_BAY, [](auto& r) { return unlessUnknown(r.bPhysicalBay); }, KSL_END(bPhysicalBay)},
    {Names::ATTR_NAME_ROTATIONAL_SPEED,
     [](auto& r) { return r.dwRPM > NON_ROTATING ? decimalText(r.dwRPM) : Common::string(); },
     KSL_END(dwRPM)},
    {Names::ATTR_NAME_RIS_BLOCKS,
     [](auto& r) { return decimalText(r.dwRISSize != 0 ? r.dwRISSize : r.dwReservedBlocks); },
     KSL_END(dwRISSize)},
    {Names::ATTR_NAME_WWID, wwidText, KSL_END(bWWID)},
    {Names::ATTR_NAME_PHY_COUNT, [](auto& r) { return decimalText(r.wPHYCount); }, KSL_END(wPHYCount)},
    {Names::ATTR_NAME_MIN_GOOD_FIRMWARE_REVISION,
     [](auto& r) { return memberText(r.sMinimumGoodFirmwareRevision); },
     KSL_END(sMinimumGoodFirmwareRevision)},
    {Names::ATTR_NAME_CURRENT_TEMPERATURE, [](auto& r) { return unlessUnknown(r.bCurrentTemperature); },
     KSL_END(bCurrentTemperature)},
    {Names::ATTR_NAME_TEMPERATURE_THRESHOLD, [](auto& r) { return unlessUnknown(r.bTemperatureThreshold); },
     KSL_END(bTemperatureThreshold)},
    {Names::ATTR_NAME_MAXIMUM_TEMPERATURE, [](auto& r) { return unlessUnknown(r.bMaximumTemperature); },
     KSL_END(bMaximumTemperature)},
    // Blocks as the host sees them may be parts of those on the medium.
    {Names::ATTR_NAME_NATIVE_BLOCK_SIZE,
     [](auto& r) {
         unsigned const blocks = std::max<unsigned>(r.bLogicalBlocksPerPhysicalBlock, 1);
         return decimalText(1ULL * r.wBlockSize * blocks);
     },
     KSL_END(bLogicalBlocksPerPhysicalBlock)},
};

#define KSL_DRIVE_FLAG(member, bit, attribute) \
    {KSL_FACT(attribute), [](auto& r) { return (r.member >> (bit)&1) != 0; }, KSL_END(member)},
constexpr FlagRow<Status> DRIVE_FLAGS[] = {KSL_DRIVE_FLAGS(KSL_DRIVE_FLAG)};

struct StateRow {
    unsigned end;
    bool (*isSet)(Status const& record);
    char const* status;
};
#define KSL_DRIVE_STATE(member, bit, status)                                      \
    {KSL_END(member), [](Status const& r) { return (r.member >> (bit)&1) != 0; }, \
     Names::ATTR_VALUE_STATUS_##status},
constexpr StateRow DRIVE_STATES[] = {KSL_DRIVE_STATES(KSL_DRIVE_STATE)};

constexpr CodeRow DRIVE_AUTHENTICATIONS[] = {
    {0, Names::ATTR_VALUE_DRIVE_AUTHENTICATION_STATUS_OK},
    {1, Names::ATTR_VALUE_DRIVE_AUTHENTICATION_STATUS_FAILED},
    {2, Names::ATTR_VALUE_DRIVE_AUTHENTICATION_STATUS_NOT_SUPPORTED},
};
constexpr CodeRow CARRIER_AUTHENTICATIONS[] = {
    {0, Names::ATTR_VALUE_CARRIER_AUTHENTICATION_STATUS_OK},
    {1, Names::ATTR_VALUE_CARRIER_AUTHENTICATION_STATUS_FAILED},
    {2, Names::ATTR_VALUE_CARRIER_AUTHENTICATION_STATUS_NOT_SUPPORTED},
};

/// Behind controllers that look into carriers.
constexpr PublishRow<Status> CARRIER_ROWS[] = {
    {Names::ATTR_NAME_DRIVE_AUTHENTICATION_STATUS,
     [](auto& r) {
         return Common::string(valueOf(DRIVE_AUTHENTICATIONS, r.bDriveAuthentication,
                                       Names::ATTR_VALUE_DRIVE_AUTHENTICATION_STATUS_UNKNOWN));
     },
     KSL_END(bDriveAuthentication)},
    {Names::ATTR_NAME_CARRIER_AUTHENTICATION_STATUS,
     [](auto& r) {
         return Common::string(valueOf(CARRIER_AUTHENTICATIONS, r.bActiveCarrierAuthentication,
                                       Names::ATTR_VALUE_CARRIER_AUTHENTICATION_STATUS_UNKNOWN));
     },
     KSL_END(bActiveCarrierAuthentication)},
    {Names::ATTR_NAME_CARRIER_APPLICATION_VERSION,
     [](auto& r) { return decimalText(r.bActiveCarrierApplicationVersion); },
     KSL_END(bActiveCarrierApplicationVersion)},
    {Names::ATTR_NAME_CARRIER_BOOTLOADER_VERSION,
     [](auto& r) { return decimalText(r.bActiveCarrierBootloaderVersion); },
     KSL_END(bActiveCarrierBootloaderVersion)},
};

/// Solid state drives that don't have the pages of wear: one disk by its model text, and lines of firmware by
/// the first four characters of their revisions.
constexpr char DISK_WITHOUT_WEAR_PAGES[] = "ATA     VQ0060EACXK";
constexpr unsigned FIRMWARE_MARK_SIZE = 4;
constexpr char const* FIRMWARE_WITHOUT_WEAR_PAGES[] = {"4IWT", "VQP0", "VQP1", "SXS0"};

bool hasWearPages(Common::string const& interface, Status const& record) {
    if (interface != Names::ATTR_VALUE_INTERFACE_SAS_SSD &&
        interface != Names::ATTR_VALUE_INTERFACE_SATA_SSD) {
        return false;
    }
    if (memberText(record.sDriveModel) == DISK_WITHOUT_WEAR_PAGES) return false;
    Common::string const mark = memberText(record.sDriveFirmwareRevision).substr(0, FIRMWARE_MARK_SIZE);
    return std::none_of(std::begin(FIRMWARE_WITHOUT_WEAR_PAGES), std::end(FIRMWARE_WITHOUT_WEAR_PAGES),
                        [&](char const* without) { return mark == without; });
}

char const* statusOf(Status const& record, unsigned received) {
    for (StateRow const& row : DRIVE_STATES) {
        if (row.end <= received && row.isSet(record)) return row.status;
    }
    return Names::ATTR_VALUE_STATUS_OK;
}

/// Firmware that doesn't know large drives has no 64-bit member, whatever stands in its place.
Common::string totalBlocks(DriveReply const& reply) {
    Status const& record = *reply.record;
    bool const isLarge =
        reply.controllerHas(Controller::ATTR_NAME_GREATER_THAN_2TIB_PHYSICAL_DRIVES_SUPPORTED,
                            Controller::ATTR_VALUE_GREATER_THAN_2TIB_PHYSICAL_DRIVES_SUPPORTED_TRUE) &&
        KSL_END(qwBIGTotalBlockCount) <= reply.received && record.qwBIGTotalBlockCount >= SMALL_CAPACITY_END;
    if (isLarge) return decimalText(record.qwBIGTotalBlockCount);
    return KSL_END(dwTotalBlocks) <= reply.received ? decimalText(record.dwTotalBlocks) : Common::string();
}

}  // namespace

void publishDriveStatus(Schema::PhysicalDrive& drive, DriveReply const& reply) {
    Status const& record = *reply.record;
    publishRows(drive, DRIVE_ROWS, record, reply.received);
    publishRows(drive, DRIVE_FLAGS, record, reply.received);
    publishOrClear(drive, Names::ATTR_NAME_TOTAL_BLOCKS, totalBlocks(reply));
    publish(drive, Names::ATTR_NAME_STATUS, statusOf(record, reply.received));
    bool const looksIntoCarriers =
        reply.controllerHas(Controller::ATTR_NAME_DRIVE_AND_CARRIER_AUTHENTICATION_SUPPORT,
                            Controller::ATTR_VALUE_DRIVE_AND_CARRIER_AUTHENTICATION_SUPPORT_TRUE);
    publishRows(drive, CARRIER_ROWS, record, looksIntoCarriers ? reply.received : 0);
    Common::string interface;
    if (KSL_END(bDeviceType) <= reply.received) {
        interface = Schema::PhysicalDrive::interfaceTypeEx(reply.record);
        publish(drive, Names::ATTR_NAME_EXINFO_SUPPORTED,
                hasWearPages(interface, record) ? Names::ATTR_VALUE_EXINFO_SUPPORTED_TRUE
                                                : Names::ATTR_VALUE_EXINFO_SUPPORTED_FALSE);
    }
    publishOrClear(drive, Names::ATTR_NAME_INTERFACE, interface);
    for (char const* attribute : {Names::ATTR_NAME_MULTI_DOMAIN_PATHS, Names::ATTR_NAME_MULTI_DOMAIN_STATUS,
                                  Names::ATTR_NAME_IS_PATH_ACTIVE}) {
        drive.Clear(attribute);
    }
    if (KSL_END(bMultiPathBox8) <= reply.received) publishPaths(drive, record);
}

}  // namespace Operations
