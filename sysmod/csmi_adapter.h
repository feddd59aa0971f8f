#pragma once

#include "sysmod/discovery.h"

namespace Core::SysMod {

/// Appends a handle of type "CSMI_HBA" for each SAS adapter that answers CSMI, by controller number. An
/// adapter whose node doesn't open or that doesn't answer is skipped.
void discoverCsmiAdapters(Interface::SysMod::Discovery::HandleList& adapters);

}  // namespace Core::SysMod
