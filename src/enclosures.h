#pragma once

#include <string>
#include <vector>

#include "common/shared_ptr.h"
#include "core/device.h"

/// One enclosure processor, as far as the update needs to know it.
struct SEP_Info {
    float fwRev = 0;          ///< installed version
    std::string displayRev;   ///< installed version as the device gives it
    bool outOfDate = false;   ///< the installed version is older than the catalogue's
    std::string productId;    ///< trimmed; the key under which everything about it is found
    std::string displayName;  ///< see getDisplayName()
    bool needsFlash = false;
};

/// One enclosure.
struct Box_Info {
    std::string port;
    std::string boxNumber;
    std::vector<SEP_Info> SEPs;
    bool needsFlash = false;
};

/// One controller or host adapter.
struct SA_Info {
    std::string slot;
    std::vector<Box_Info> boxes;
    bool needsFlash = false;
};

/// Judges every enclosure processor behind a controller or host adapter and, when flashing is allowed,
/// flashes what needs it, one product id after the other in sorted order. 0, or a code of ReturnCode: that of
/// the last flash that failed, except that a codeRefused stays once it is there. A failed flash doesn't keep
/// the others from being tried.
int processEnclosures(Common::shared_ptr<Core::Device> const& controller);

/// Compares the processors of one enclosure with the catalogue, counts them, records them in the discovery
/// pass, and adds them to `box`. 1 when the enclosure is to be flashed in this pass, else 0; box.needsFlash
/// may be set either way.
int CheckEnclosure(Common::shared_ptr<Core::Device> const& enclosure, Box_Info& box);

/// The name by which people know an enclosure product; the product id itself where there is no other.
std::string getDisplayName(std::string const& productId);
