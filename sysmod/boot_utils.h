#pragma once

#include "common/string.h"

namespace Core::SysMod::BootUtils {

/// Whether the machine boots from the adapter with this subsystem identity in this slot.
/// `subsystemIdentifier` is the decimal text of vendor (high half) and device, `slot` the slot's name, with
/// or without "S:" in front.
///
/// The firmware's EFI variables decide: of the active entries in the boot order, the first that names a PCI
/// function. A machine without these variables boots from no adapter. An adapter for which the kernel shows
/// no slot is taken when it is the only one of its identity.
bool IsBootController(Common::string const& subsystemIdentifier, Common::string const& slot);

}  // namespace Core::SysMod::BootUtils
