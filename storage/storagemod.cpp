#include "storage/storagemod.h"

#include "command/scsi_status.h"
#include "core/device_factory.h"
#include "core/operation_registry.h"
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
#include "storage/vocabulary/results.h"

namespace Interface::StorageMod {
namespace {

using Core::DeviceOperationCreatorBase;

template <typename Operation>
DeviceOperationCreatorBase* creatorOf() {
    return new Core::DeviceOperationCreator<Operation>;
}

template <typename Kind>
Core::OperationList& operationsOf() {
    return Core::DeviceOperationRegistry<Kind>::sm_operations;
}

/// One operation of one device type. The order is the order of registration.
struct OperationRow {
    char const* deviceType;
    Core::OperationList& (*operations)();
    DeviceOperationCreatorBase* (*creator)();
};

constexpr OperationRow OPERATIONS[] = {
    {Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT, operationsOf<Schema::ModRoot>,
     creatorOf<Operations::DiscoverArrayController>},
    {Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT, operationsOf<Schema::ModRoot>,
     creatorOf<Operations::DiscoverFailedArrayController>},
    {Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT, operationsOf<Schema::ModRoot>,
     creatorOf<Operations::DiscoverHostBusAdapter>},
    {Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT, operationsOf<Schema::ModRoot>,
     creatorOf<Operations::WriteAllowedControllerDiscovery>},
    {Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT, operationsOf<Schema::ModRoot>,
     creatorOf<Operations::WriteSetCapabilityMask>},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     creatorOf<Operations::ReadArrayControllerInfo>},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     creatorOf<Operations::ReadBMICCommand>},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     creatorOf<Operations::WriteBMICCommand>},
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
    for (OperationRow const& row : OPERATIONS) {
        Core::RegisterSchema(row.deviceType, row.operations());
        Core::RegisterOperation(row.deviceType, row.creator());
    }
    for (StatusRow const& row : STATUSES) {
        SCSIStatus::AddStatusDescription(row.commandStatus, row.scsiStatus, row.senseKey, row.asc,
                                         SCSIStatus::ANY_BYTE, row.text);
    }
}

}  // namespace Interface::StorageMod
