#pragma once

/// CSMI requests with their records, as the CSMI standard lays them out. Header: 0 controller number (4),
/// 4 length of the record (4), 8 return code (4), 12 time-out in seconds (4), 16 direction (2; 1 is a write).
///
///   0xCC770001  driver information, 196          20 81 name; 101 81 description; 182 8 version
///   0xCC770002  controller configuration, 200    32 4 board; 36 2 slot; 40 3 bus, device, function;
///                                                72 81 serial; 154 8 firmware version; 162 8 ROM version
///   0xCC770003  controller status, 56            20 4 status
///   0xCC770014  phy information, 2072            20 1 count; 24 32 entries of 64: 0 own and 36 attached
///                                                identity: 0 type, 3 target protocols, 12 8 address, 20 phy
///   0xCC770017  SMP pass-through, 2084           20 phy; 24 8 address; 32 4 length; 36 1020 frame;
///                                                1056 connection status; 1060 4 length; 1064 1020 frame
///   0xCC770018  SSP pass-through, 360 and data   20 phy; 21 port; 24 8 address; 40 block length; 44 16
///   block;
///                                                60 4 flags; 88 4 length; 96 data present; 97 status;
///                                                98 2 sense length, high byte first; 100 sense; 356 4 length
///   0xCC770031, 0xCC770032  pause and resume, 92  20 8 address

#include <cstdint>
#include <string>

#include "simulator/exchange.h"

namespace simulator {

/// Null when the number isn't that of a CSMI request here.
char const* csmiName(std::uint32_t number);

/// The controller number in a record's header.
std::uint32_t csmiController(void const* record);

/// The command in a record. Returns 0, or the errno of a record that is refused, with why in `reason`. What a
/// device answers is the record's part behind the header, the response frame of SMP, or the data of SSP.
int decodeCsmi(std::uint32_t number, void const* record, Command& command, std::string& reason);

/// Puts the reply into the record. A command status other than those for a done command becomes the header's
/// return code.
void encodeCsmi(std::uint32_t number, void* record, Command const& command, Reply const& reply);

inline constexpr std::uint32_t CSMI_DRIVER_INFO = 0xCC770001;
inline constexpr std::uint32_t CSMI_CONFIGURATION = 0xCC770002;
inline constexpr std::uint32_t CSMI_STATUS = 0xCC770003;
inline constexpr std::uint32_t CSMI_PHYS = 0xCC770014;
inline constexpr std::uint32_t CSMI_SMP = 0xCC770017;
inline constexpr std::uint32_t CSMI_SSP = 0xCC770018;
inline constexpr std::uint32_t CSMI_PAUSE = 0xCC770031;
inline constexpr std::uint32_t CSMI_RESUME = 0xCC770032;

}  // namespace simulator
