#include "storage/storagemod.h"

#include "command/scsi_status.h"
#include "core/device_factory.h"
#include "storage/schema/mod_root.h"
#include "storage/vocabulary/results.h"

namespace Interface::StorageMod {
namespace {

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
    Core::RegisterOperationRows(operationRows());
    for (StatusRow const& row : STATUSES) {
        SCSIStatus::AddStatusDescription(row.commandStatus, row.scsiStatus, row.senseKey, row.asc,
                                         SCSIStatus::ANY_BYTE, row.text);
    }
}

}  // namespace Interface::StorageMod
