#pragma once

#include <cstdint>
#include <vector>

#include "common/string.h"

namespace Core::SysMod {

/// One entry of a controller's report of its units, as it came: see the offsets beside each report.
using LunEntry = std::vector<std::uint8_t>;

/// A report of a controller's units in its long form (12-byte command block, byte 1 is 2). The reply has the
/// length of its list in bytes 0 to 3, high byte first, and the form 2 in byte 4; the entries begin at
/// byte 8.
struct LunReport {
    char const* name;
    std::uint8_t operationCode;
    std::size_t entrySize;
};

/// REPORT PHYSICAL LUNS. An entry: 0 logical unit address (8), 8 SAS address (8), 16 SAS address of the
/// parent (8), 24 index (2, high byte first), 26 device type (as EnDeviceType), 27 phy, 28 phy of the parent.
inline constexpr LunReport REPORT_PHYSICAL_LUNS = {"REPORT PHYSICAL LUNS", 0xC3, 32};
/// REPORT LOGICAL LUNS. An entry: 0 logical unit address (8), 8 unique identity (16).
inline constexpr LunReport REPORT_LOGICAL_LUNS = {"REPORT LOGICAL LUNS", 0xC2, 24};

/// Asks the controller that `handle` names: first for the length, then, unless the list is empty, for the
/// whole. Nothing when it doesn't answer; entries that the reply cuts off are refused with a log line.
std::vector<LunEntry> readLunReport(Common::string const& handle, LunReport const& report);

}  // namespace Core::SysMod
