#pragma once

#include <cstdint>
#include <span>

/// The array controller models, one row each; see controller_models.def for the columns.
namespace Interface::StorageMod {

struct ControllerModel {
    char const* name;          ///< code name, the last part of the name constant
    char const* model;         ///< the model's name as people use it
    char const* nameConstant;  ///< ATTR_VALUE_CONTROLLER_NAME_...
    char const* family;        ///< ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_...
    char const* marketingName;
    std::uint32_t identifiers[2];  ///< PCI subsystem identifiers of its boards; 0 for none
};

/// All models, in the order that look-ups by text need.
std::span<ControllerModel const> controllerModels();

}  // namespace Interface::StorageMod
