#pragma once

#include <string>

#include "common/shared_ptr.h"
#include "core/device.h"

/// The attribute as text, or `otherwise` when the device doesn't have it.
std::string getValue(Common::shared_ptr<Core::Device> const& device, char const* name,
                     std::string const& otherwise);

/// Writes one attribute to the verbose log in readable form.
void logAttribute(std::string const& name, std::string const& value);

/// Writes each attribute of the device, in name order.
void logAllAttributes(Common::shared_ptr<Core::Device> const& device);
