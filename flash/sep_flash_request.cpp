#include "flash/sep_flash_request.h"

#include "command/device_command_return.h"
#include "common/conversion.h"
#include "common/debug_logger.h"
#include "core/device_finder.h"
#include "core/tolkmod.h"
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
using DeviceCommandReturn::ArgumentProblem;

/// Where an image stands in a device is told in 24 bits.
constexpr unsigned int LARGEST_IMAGE = 1U << 24;

bool refuse(char const* argument, OperationReturn& result) {
    ArgumentProblem(Results::ATTR_VALUE_STATUS_ARGUMENT_INVALID, argument, result);
    return false;
}

bool demand(DeviceOperation const& operation, char const* argument, OperationReturn& result) {
    if (operation.hasArgument(argument)) return true;
    ArgumentProblem(Results::ATTR_VALUE_STATUS_ARGUMENT_MISSING, argument, result);
    return false;
}

bool hasProduct(DeviceOperation const& operation) {
    return operation.hasArgument(Names::ATTR_NAME_PRODUCT_ID) &&
           !operation.hasArgumentAndIs(Names::ATTR_NAME_PRODUCT_ID, Names::PRODUCT_ID_UNKNOWN);
}

bool findByProduct(Common::string const& product, DevicePointer const& adapter, SepFlashRequest& request,
                   OperationReturn& result) {
    for (DevicePointer const& sep : findSeps(adapter)) {
        if (sep->hasAttributeAndIs(Names::ATTR_NAME_PRODUCT_ID, product) ||
            getFlashProductID(sep) == product) {
            request.targets.push_back(sep);
        }
    }
    if (!request.targets.empty()) return true;
    DebugLogger::LogCommand("Product \"%s\" refused: no such SEP below %s", product.c_str(),
                            adapter->toString().c_str());
    return refuse(Names::ATTR_NAME_PRODUCT_ID, result);
}

bool findByIdentifiers(DeviceOperation const& operation, DevicePointer const& adapter,
                       SepFlashRequest& request, OperationReturn& result) {
    auto const seps = findSeps(adapter);
    for (auto argument = operation.beginArgument(); argument != operation.endArgument(); ++argument) {
        if (argument->second.first != Names::ATTR_NAME_UNIQUE_ID) continue;
        Common::string const identifier = argument->second.second;
        auto const before = request.targets.size();
        for (DevicePointer const& sep : seps) {
            if (sep->hasAttributeAndIs(Names::ATTR_NAME_UNIQUE_ID, identifier)) {
                request.targets.push_back(sep);
                break;
            }
        }
        if (request.targets.size() == before) {
            DebugLogger::LogCommand("Identifier \"%s\" refused: no such SEP below %s", identifier.c_str(),
                                    adapter->toString().c_str());
            return refuse(Names::ATTR_NAME_UNIQUE_ID, result);
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
        return demand(operation, Names::ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE, result);
    }
    request.limit = Conversion::toNumber<unsigned short>(
        operation.getArgValue(Names::ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE));
    if (request.limit == 0) request.limit = modelLimit;
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
    if (!demand(operation, Names::ATTR_NAME_BUFFER_ADDRESS, result) ||
        !demand(operation, Names::ATTR_NAME_BUFFER_SIZE, result)) {
        return false;
    }
    auto const address =
        Conversion::toNumber<unsigned long long>(operation.getArgValue(Names::ATTR_NAME_BUFFER_ADDRESS));
    request.image = {
        reinterpret_cast<unsigned char const*>(static_cast<std::uintptr_t>(address)),
        Conversion::toNumber<unsigned int>(operation.getArgValue(Names::ATTR_NAME_BUFFER_SIZE)),
    };
    bool const hasAddress = request.image.bytes != nullptr || request.image.size == 0;
    if (!hasAddress || request.image.size > LARGEST_IMAGE) {
        DebugLogger::LogCommand("Image of %zu bytes at %p refused: an address and at most %u bytes expected",
                                request.image.size, static_cast<void const*>(request.image.bytes),
                                LARGEST_IMAGE);
        return refuse(hasAddress ? Names::ATTR_NAME_BUFFER_SIZE : Names::ATTR_NAME_BUFFER_ADDRESS, result);
    }
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
    if (!byProduct && !demand(operation, Names::ATTR_NAME_UNIQUE_ID, result)) return false;
    bool const found = byProduct ? findByProduct(operation.getArgValue(Names::ATTR_NAME_PRODUCT_ID), adapter,
                                                 request, result)
                                 : findByIdentifiers(operation, adapter, request, result);
    if (!found) return false;
    request.product = getFlashProductID(request.targets.front());
    return readLimit(operation, request, result);
}

}  // namespace Operations
