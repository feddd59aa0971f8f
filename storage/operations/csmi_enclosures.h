#pragma once

#include <vector>

#include "command/concrete_devices.h"

namespace Operations {

/// A box behind a SAS adapter, known by its processors.
struct CsmiEnclosure {
    unsigned char number;  ///< of the adapter's boxes, from 1, in the order of their processors
    Common::string serialNumber;
    Common::string vendor;  ///< as the first processor's inquiry data, as the following
    Common::string product;
    Common::string revision;
    std::vector<Common::string> seps;  ///< handles
};

/// The boxes behind an adapter. Processors of one chassis serial number are in one box; one that tells none
/// is a box of its own. A processor that doesn't answer INQUIRY has no texts.
std::vector<CsmiEnclosure> csmiEnclosures(ConcreteSCSIDevice const& adapter);

}  // namespace Operations
