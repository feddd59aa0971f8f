#pragma once

#include <string>

#include "infomgr/info_mgr_api.h"

/// The way to a controller's NVRAM through the management objects. Nothing is kept or closed: the objects
/// stay for the process.

/// The controller of this serial number, or null, also when the management objects can't be opened at all.
/// The first call looks for the machine's controllers; a device that doesn't answer is passed over. Of two
/// controllers with one serial number it is the first; an empty one is no controller's. White space around
/// the controllers' numbers doesn't count.
HMGMTOBJECT getHandle(std::string const& serial);

/// The controller's serial number as it came, with the white space around it; empty when it can't be told,
/// also when a part of it didn't arrive.
std::string SenseSubsystemInformation(HMGMTOBJECT controller);

/// The boot strap byte at offset 2045, or 255 when it didn't arrive. Returns the status of the call
/// (infomgr/info_mgr_api.h).
int ReadNVRAMBootStrap(HMGMTOBJECT controller, unsigned char& value);
int writeNVRAMBootStrap(HMGMTOBJECT controller, unsigned char value, unsigned short offset);
