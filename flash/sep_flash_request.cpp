#include "flash/sep_flash_request.h"

#include <algorithm>

#include "command/concrete_devices.h"
#include "common/debug_logger.h"
#include "core/device_finder.h"
#include "core/tolkmod.h"
#include "flash/image_arguments.h"
#include "flash/sep_products.h"
#include "flash/vocabulary.h"
#include "flash/vocabulary_enclosure.h"
#include "storage/vocabulary/device_types.h"

namespace Operations {
namespace {

namespace Names = Interface::FlashMod::SEP;
namespace Results = Interface::TOLKMod::OperationReturn;
using Common::DebugLogger;
using Core::DeviceOperation;
using Core::OperationReturn;
using DevicePointer = Common::shared_ptr<Core::Device>;

/// Where an image stands in a device is told in 24 bits.
constexpr std::size_t LARGEST_IMAGE = std::size_t{1} << 24;

bool hasProduct(DeviceOperation const& operation) {
    return operation.hasArgument(Names::ATTR_NAME_PRODUCT_ID) &&
           !operation.hasArgumentAndIs(Names::ATTR_NAME_PRODUCT_ID, Names::PRODUCT_ID_UNKNOWN);
}

/// A device that is found on two ways is flashed once: two flashes of one device would mix their chunks.
void addTarget(DevicePointer const& sep, SepFlashRequest& request) {
    auto const handleOf = [](DevicePointer const& device) {
        auto const* const scsi = dynamic_cast<ConcreteSCSIDevice const*>(device.get());
        return scsi != nullptr ? scsi->handle() : Common::string();
    };
    Common::string const handle = handleOf(sep);
    for (DevicePointer const& known : request.targets) {
        if (known == sep || (!handle.empty() && handleOf(known) == handle)) {
            DebugLogger::LogCommand("SEP %s passed over: it is found a second time", sep->toString().c_str());
            return;
        }
    }
    request.targets.push_back(sep);
}

bool findByProduct(Common::string const& product, DevicePointer const& adapter, SepFlashRequest& request,
                   OperationReturn& result) {
    for (DevicePointer const& sep : findSeps(adapter)) {
        if (sep->hasAttributeAndIs(Names::ATTR_NAME_PRODUCT_ID, product) ||
            getFlashProductID(sep) == product) {
            addTarget(sep, request);
        }
    }
    if (!request.targets.empty()) return true;
    refuseArgument(Names::ATTR_NAME_PRODUCT_ID, product, "the product of a SEP below the adapter", result);
    return false;
}

bool findByIdentifiers(DeviceOperation const& operation, DevicePointer const& adapter,
                       SepFlashRequest& request, OperationReturn& result) {
    auto const seps = findSeps(adapter);
    for (auto argument = operation.beginArgument(); argument != operation.endArgument(); ++argument) {
        if (argument->second.first != Names::ATTR_NAME_UNIQUE_ID) continue;
        Common::string const identifier = argument->second.second;
        auto const sep = std::find_if(seps.begin(), seps.end(), [&](DevicePointer const& each) {
            return each->hasAttributeAndIs(Names::ATTR_NAME_UNIQUE_ID, identifier);
        });
        if (sep != seps.end()) {
            addTarget(*sep, request);
        } else {
            refuseArgument(Names::ATTR_NAME_UNIQUE_ID, identifier, "that of a SEP below the adapter", result);
            return false;
        }
    }
    return true;
}

/// How many at a time. A model's own limit holds where the caller gives none.
bool readLimit(DeviceOperation const& operation, SepFlashRequest& request, OperationReturn& result) {
    SepProduct const* const row = findSepProduct(request.product);
    unsigned const modelLimit = row != nullptr ? row->parallelLimit : 0;
    bool const isGiven = operation.hasArgument(Names::ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE);
    request.isParallel =
        !operation.hasArgumentAndIs(Names::ATTR_NAME_FLASH_TYPE, Names::ATTR_VALUE_FLASH_TYPE_SERIAL);
    if (!isGiven && modelLimit != 0) request.isParallel = true;
    if (!isGiven && modelLimit == 0 && request.isParallel) {
        return demandArguments(operation, {Names::ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE}, result);
    }
    Common::string const limit = operation.getArgValue(Names::ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE);
    unsigned long long number = 0;
    if (isGiven && !readNumber(limit, 0xFFFF, number)) {
        refuseArgument(Names::ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE, limit, "0 to 65535", result);
        return false;
    }
    request.limit = number != 0 ? static_cast<unsigned>(number) : modelLimit;
    return true;
}

}  // namespace

std::vector<DevicePointer> findSeps(DevicePointer const& adapter) {
    Core::DeviceFinder finder(adapter);
    finder.AddAttribute({Interface::TOLKMod::Device::ATTR_NAME_TYPE,
                         Core::AttributeValue(Interface::StorageMod::SEP::ATTR_VALUE_TYPE_SEP)});
    Common::list<DevicePointer> found;
    finder.find(found, Core::DeviceFinder::eDownward);
    return {found.begin(), found.end()};
}

bool readImageArguments(DeviceOperation const& operation, SepFlashRequest& request, OperationReturn& result) {
    if (!demandArguments(operation, {Names::ATTR_NAME_BUFFER_ADDRESS, Names::ATTR_NAME_BUFFER_SIZE},
                         result)) {
        return false;
    }
    request.image = readImage(operation, Names::ATTR_NAME_BUFFER_ADDRESS, Names::ATTR_NAME_BUFFER_SIZE,
                              LARGEST_IMAGE, result);
    if (!result) return false;
    request.resets = operation.hasArgumentAndIs(Names::ATTR_NAME_RESET_SEP, Names::ATTR_VALUE_RESET_SEP_TRUE);
    request.disablesHotplug = !operation.hasArgument(Names::ATTR_NAME_DISABLE_HOTPLUG_EVENTS) ||
                              operation.hasArgumentAndIs(Names::ATTR_NAME_DISABLE_HOTPLUG_EVENTS,
                                                         Names::ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_TRUE);
    return true;
}

bool readAdapterArguments(DeviceOperation const& operation, DevicePointer const& adapter,
                          SepFlashRequest& request, OperationReturn& result) {
    if (!readImageArguments(operation, request, result)) return false;
    bool const byProduct = hasProduct(operation);
    if (byProduct && operation.hasArgument(Names::ATTR_NAME_UNIQUE_ID)) {
        result.Receive(Core::Attribute(Results::ATTR_NAME_STATUS, Results::ATTR_VALUE_STATUS_FAILURE));
        result.Receive(Core::Attribute(Results::ATTR_NAME_OPERATION_FAILURE_REASON,
                                       Interface::FlashMod::OperationReturn::
                                           ATTR_VALUE_OPERATION_FAILURE_REASON_INVALID_ARGUMENT_COMBINATION));
        return false;
    }
    if (!byProduct && !demandArguments(operation, {Names::ATTR_NAME_UNIQUE_ID}, result)) return false;
    bool const found = byProduct ? findByProduct(operation.getArgValue(Names::ATTR_NAME_PRODUCT_ID), adapter,
                                                 request, result)
                                 : findByIdentifiers(operation, adapter, request, result);
    if (!found) return false;
    request.product = getFlashProductID(request.targets.front());
    return readLimit(operation, request, result);
}

}  // namespace Operations
