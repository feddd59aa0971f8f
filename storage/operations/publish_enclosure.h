#pragma once

#include "command/records/all_records.h"
#include "core/device.h"

namespace Operations {

/// Publishes the states of fans, supplies and temperature, and the overall status that follows from them.
/// What the alarm data doesn't vouch for counts for nothing; supplies it doesn't vouch for aren't redundant.
void publishAlarms(Core::Device& enclosure, Records::ALARM_STRUCTURE const& alarms);

/// One way to a box.
struct BoxPath {
    Common::string port;
    unsigned box;

    bool operator==(BoxPath const&) const = default;
};

/// The port text of a record; ATTR_VALUE_PORT_UNKNOWN for "??", for blanks, and for a box that isn't known
/// (0xFF).
Common::string portText(Common::string const& port, unsigned box);

/// Of a box or a drive that has more paths than one: all of them as "port:box" with commas between, how they
/// do, and whether the active one is the one under which it was found. Nothing for another device. The record
/// is SENSE_BUS_PARAMETERS or PHYSICAL_DRIVE_STATUS: members and attributes have the same names.
template <class Record>
void publishPaths(Core::Device& device, Record const& record);
/// The same box was found under another place: adds that path, unless it is known.
void addPath(Core::Device& enclosure, Records::SENSE_BUS_PARAMETERS const& parameters);

}  // namespace Operations
