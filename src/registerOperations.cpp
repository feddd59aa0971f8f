#include "command/commandmod.h"
#include "common/debug_logger.h"
#include "common/output_stream.h"
#include "core/device.h"
#include "core/tolkmod.h"
#include "flash/flashmod.h"
#include "flash/vocabulary.h"
#include "src/tolkflash.h"
#include "storage/storagemod.h"
#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/operations.h"

namespace {

using namespace Interface::StorageMod;
namespace Flash = Interface::FlashMod;

/// 1 until the library has been started, 0 from then on: the name says the opposite.
int isTolkAPIInitialized = 1;

constexpr char DEBUG_LOG[] = "tolklog.txt";
constexpr int COMMAND_LEVEL = 1;

struct ActivePair {
    char const* deviceType;
    char const* operation;
};

// The order is the order in which a reenumeration runs them. Pairs that stand here twice are activated once,
// and one of an operation that the library doesn't have is passed over.
constexpr ActivePair ACTIVE_PAIRS[] = {
    {Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT, OPERATION_DISCOVER_HOST_BUS_ADAPTERS},
    {Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT, OPERATION_DISCOVER_ARRAY_CONTROLLERS},
    {Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT, OPERATION_WRITE_ALLOWED_CONTROLLER_DISCOVERY},
    {HostBusAdapter::ATTR_VALUE_TYPE_HBA, OPERATION_DISCOVER_STORAGE_ENCLOSURES},
    {HostBusAdapter::ATTR_VALUE_TYPE_HBA, Flash::OPERATION_WRITE_FLASH_SEP_FIRMWARE},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, OPERATION_READ_ARRAY_CONTROLLER_PRESENTATION},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, OPERATION_READ_BMIC_COMMAND},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, OPERATION_WRITE_BMIC_COMMAND},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, OPERATION_READ_ARRAY_CONTROLLER_INFO},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, OPERATION_DISCOVER_STORAGE_ENCLOSURES},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, OPERATION_DISCOVER_SEPS},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER,
     Flash::OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, Flash::OPERATION_WRITE_FLASH_SEP_FIRMWARE},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, Flash::OPERATION_WRITE_SOFT_RESET_ARRAY_CONTROLLER},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, Flash::OPERATION_WRITE_FLASH_FBWC},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, OPERATION_DISCOVER_PHYSICAL_DRIVES},
    {StorageEnclosure::ATTR_VALUE_TYPE_STORAGE_ENCLOSURE, OPERATION_DISCOVER_SEPS},
    {SEP::ATTR_VALUE_TYPE_SEP, Flash::OPERATION_WRITE_FLASH_SEP_FIRMWARE},
    {ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, Flash::OPERATION_WRITE_SOFT_RESET_ARRAY_CONTROLLER},
    {StorageEnclosure::ATTR_VALUE_TYPE_STORAGE_ENCLOSURE, OPERATION_DISCOVER_DRIVE_CAGES},
    {SEP::ATTR_VALUE_TYPE_SEP, Flash::OPERATION_WRITE_FLASH_SEP_FIRMWARE},
    {PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE, Flash::OPERATION_WRITE_FLASH_DRIVE_ACTIVE_CARRIER},
    {DriveCage::ATTR_VALUE_TYPE_DRIVE_CAGE, OPERATION_DISCOVER_PHYSICAL_DRIVES},
    {PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE, OPERATION_READ_PHYSICAL_DRIVE_INFO},
};
static_assert(sizeof ACTIVE_PAIRS / sizeof ACTIVE_PAIRS[0] == 24);

}  // namespace

void RegisterOperations() {
    if (isTolkAPIInitialized == 0) {
        return;
    }
    Interface::CommandMod::InitializeModule(false);
    Interface::TOLKMod::InitializeModule(false, false);
    Interface::StorageMod::InitializeModule();
    Interface::FlashMod::InitializeModule();
    Common::DebugLogger::RegisterDebugOutputStream(
        COMMAND_LEVEL,
        Common::shared_ptr<Common::OutputStream>(new Common::OutputStreamToFile(DEBUG_LOG, false)));
    for (ActivePair const& pair : ACTIVE_PAIRS) {
        Core::Device::RegisterOperation(pair.deviceType, pair.operation);
    }
    isTolkAPIInitialized = 0;
}
