#include "storage/storagemod.h"

#include "command/scsi_status.h"
#include "core/device_factory.h"
#include "core/operation_rows.h"
#include "core/tolkmod.h"
#include "storage/operations/bmic_access.h"
#include "storage/operations/discover_controllers.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/operations/write_allowed_controller_discovery.h"
#include "storage/operations/write_set_capability_mask.h"
#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/mod_root.h"
#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/operations.h"
#include "storage/vocabulary/results.h"

namespace Interface::StorageMod {
namespace {

namespace Root = Interface::TOLKMod::ModRoot;
using Core::creatorOf;
using Core::operationsOf;

constexpr Core::OperationRow OPERATIONS[] = {
    {Root::ATTR_VALUE_TYPE_MOD_ROOT, operationsOf<Schema::ModRoot>, OPERATION_DISCOVER_ARRAY_CONTROLLERS,
     creatorOf<Operations::DiscoverArrayController>},
    {Root::ATTR_VALUE_TYPE_MOD_ROOT, operationsOf<Schema::ModRoot>,
     OPERATION_DISCOVER_FAILED_ARRAY_CONTROLLERS, creatorOf<Operations::DiscoverFailedArrayController>},
    {Root::ATTR_VALUE_TYPE_MOD_ROOT, operationsOf<Schema::ModRoot>, OPERATION_DISCOVER_HOST_BUS_ADAPTERS,
     creatorOf<Operations::DiscoverHostBusAdapter>},
    {Root::ATTR_VALUE_TYPE_MOD_ROOT, operationsOf<Schema::ModRoot>,
     OPERATION_WRITE_ALLOWED_CONTROLLER_DISCOVERY, creatorOf<Operations::WriteAllowedControllerDiscovery>},
    {Root::ATTR_VALUE_TYPE_MOD_ROOT, operationsOf<Schema::ModRoot>, OPERATION_WRITE_SET_CAPABILITY_MASK,
     creatorOf<Operations::WriteSetCapabilityMask>},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     OPERATION_READ_ARRAY_CONTROLLER_INFO, creatorOf<Operations::ReadArrayControllerInfo>},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     OPERATION_READ_BMIC_COMMAND, creatorOf<Operations::ReadBMICCommand>},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     OPERATION_WRITE_BMIC_COMMAND, creatorOf<Operations::WriteBMICCommand>},
};

/// A command status of 0xFF is no wildcard: these texts stand for exactly that status, and stay so narrow.
struct StatusRow {
    std::uint16_t commandStatus;
    std::uint8_t scsiStatus;
    std::uint8_t senseKey;
    std::uint8_t asc;
    char const* text;
};

constexpr StatusRow STATUSES[] = {
    {0x00FF, 2, 5, 0x24, OperationReturn::ATTR_VALUE_STATUS_INVALID_FIELD_IN_CDB},
    {0x00FF, 2, 5, 0x26, OperationReturn::ATTR_VALUE_STATUS_INVALID_FIELD_IN_PARAMETER_LIST},
};

Common::shared_ptr<Core::Device> createRoot() {
    return (new Schema::ModRoot)->getDevicePtr();
}

}  // namespace

void InitializeModule() {
    static bool isInitialized = false;
    if (isInitialized) {
        return;
    }
    isInitialized = true;
    Core::DeviceFactory::SetRootCreator(createRoot);
    Core::RegisterOperationRows(OPERATIONS);
    for (StatusRow const& row : STATUSES) {
        SCSIStatus::AddStatusDescription(row.commandStatus, row.scsiStatus, row.senseKey, row.asc,
                                         SCSIStatus::ANY_BYTE, row.text);
    }
}

}  // namespace Interface::StorageMod
