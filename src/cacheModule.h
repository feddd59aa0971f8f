#pragma once

#include <string>

#include "common/shared_ptr.h"
#include "core/device.h"

/// Looks at a controller's cache module: compares its microcontroller's firmware with the catalogue's entry
/// `tag`, records it in the discovery pass, and flashes it when it is older, or when flashing is forced. 0;
/// codeUnreadable without an entry; or what flashPIC() returned.
int checkArrayForFBWC(Common::shared_ptr<Core::Device> const& controller, std::string const& tag);

/// Writes the catalogue's image to the microcontroller of the cache module. 0 also without a catalogue entry;
/// codeRefused, codeCacheFileMissing, codeUnreadable for an image that opens but can't be read, or what
/// LogOperationReturn() says.
int flashPIC(Common::shared_ptr<Core::Device> const& controller, std::string const& tag);
