#pragma once

#include <vector>

#include "command/scsi/flash_commands.h"
#include "core/device.h"
#include "core/device_operation.h"

namespace Operations {

/// What the arguments of a flash of enclosure processors ask for, checked.
struct SepFlashRequest {
    ImageSpan image;
    bool resets = false;
    bool disablesHotplug = true;

    // Of a flash by adapter.
    std::vector<Common::shared_ptr<Core::Device>> targets;  ///< never empty
    Common::string product;                                 ///< of the first target
    bool isParallel = true;
    unsigned limit = 0;  ///< most devices at a time; 0: any number
};

/// Reads the arguments that both forms have. False, with the problem in `result`, when one is missing or bad.
bool readImageArguments(Core::DeviceOperation const& operation, SepFlashRequest& request,
                        Core::OperationReturn& result);
/// The same for the form by adapter; finds the devices meant.
bool readAdapterArguments(Core::DeviceOperation const& operation,
                          Common::shared_ptr<Core::Device> const& adapter, SepFlashRequest& request,
                          Core::OperationReturn& result);
/// The enclosure processors below an adapter, in the order of the tree.
std::vector<Common::shared_ptr<Core::Device>> findSeps(Common::shared_ptr<Core::Device> const& adapter);

}  // namespace Operations
