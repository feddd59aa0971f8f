#include "storage/operations/publish_enclosure.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "storage/operations/bus_parameters.h"
#include "storage/operations/publish.h"
#include "storage/vocabulary/storage_enclosure.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::StorageEnclosure;
using Parameters = Records::SENSE_BUS_PARAMETERS;

constexpr unsigned PATHS = 8;
constexpr unsigned PORT_SIZE = 2;
constexpr unsigned UNKNOWN_BOX = 0xFF;

bool bit(unsigned value, unsigned number) {
    return (value >> number & 1) != 0;
}

char const* fanStatus(Records::ALARM_STRUCTURE const& alarms) {
    if (!bit(alarms.bValidAlarmBits, 0)) return Names::ATTR_VALUE_FAN_STATUS_NOT_AVAILABLE;
    if (bit(alarms.bAlarmStatus, 4)) return Names::ATTR_VALUE_FAN_STATUS_DEGRADED;
    return bit(alarms.bAlarmStatus, 0) ? Names::ATTR_VALUE_FAN_STATUS_FAILURE
                                       : Names::ATTR_VALUE_FAN_STATUS_OK;
}

char const* supplyStatus(Records::ALARM_STRUCTURE const& alarms) {
    if (!bit(alarms.bValidAlarmBits, 3)) return Names::ATTR_VALUE_POWER_SUPPLY_STATUS_NOT_REDUNDANT;
    return bit(alarms.bAlarmStatus, 3) ? Names::ATTR_VALUE_POWER_SUPPLY_STATUS_REDUNDANT_DEGRADED
                                       : Names::ATTR_VALUE_POWER_SUPPLY_STATUS_REDUNDANT;
}

char const* temperatureStatus(Records::ALARM_STRUCTURE const& alarms) {
    if (!bit(alarms.bValidAlarmBits, 1)) return Names::ATTR_VALUE_TEMPERATURE_STATUS_NOT_AVAILABLE;
    // The warning is asked for first: a box that sets both bits has always been told as warm.
    if (bit(alarms.bTempStatus, 0)) return Names::ATTR_VALUE_TEMPERATURE_STATUS_WARNING_CONDITION;
    return bit(alarms.bTempStatus, 1) ? Names::ATTR_VALUE_TEMPERATURE_STATUS_CRITICAL_CONDITION
                                      : Names::ATTR_VALUE_TEMPERATURE_STATUS_OK;
}

void publishUnless(Core::Device& device, char const* attribute, char const* value, char const* absent) {
    publishOrClear(device, attribute, std::strcmp(value, absent) == 0 ? "" : value);
}

template <class Record>
BoxPath ownPath(Record const& record) {
    return {memberText(record.sPhysicalPort), record.bPhysicalBox};
}

/// By the bits of the maps. Ports and boxes stand one behind the other in the record.
template <class Record>
BoxPath pathOf(Record const& record, unsigned number) {
    static_assert(offsetof(Record, sMultiPathPort8) ==
                  offsetof(Record, sMultiPathPort1) + (PATHS - 1) * PORT_SIZE);
    static_assert(offsetof(Record, bMultiPathBox8) == offsetof(Record, bMultiPathBox1) + PATHS - 1);
    auto const* const bytes = reinterpret_cast<unsigned char const*>(&record);
    char port[PORT_SIZE];
    std::memcpy(port, bytes + offsetof(Record, sMultiPathPort1) + number * PORT_SIZE, PORT_SIZE);
    return {memberText(port), bytes[offsetof(Record, bMultiPathBox1) + number]};
}

Common::string textOf(BoxPath const& path) {
    return path.port + ":" + decimalText(path.box);
}

bool sharePort(std::vector<BoxPath> const& paths) {
    for (std::size_t i = 0; i < paths.size(); ++i) {
        for (std::size_t j = i + 1; j < paths.size(); ++j) {
            if (paths[i].port == paths[j].port) return true;
        }
    }
    return false;
}

}  // namespace

void publishAlarms(Core::Device& enclosure, Records::ALARM_STRUCTURE const& alarms) {
    char const* const fan = fanStatus(alarms);
    char const* const supply = supplyStatus(alarms);
    char const* const temperature = temperatureStatus(alarms);
    publishUnless(enclosure, Names::ATTR_NAME_FAN_STATUS, fan, Names::ATTR_VALUE_FAN_STATUS_NOT_AVAILABLE);
    publish(enclosure, Names::ATTR_NAME_POWER_SUPPLY_STATUS, supply);
    publishUnless(enclosure, Names::ATTR_NAME_TEMPERATURE_STATUS, temperature,
                  Names::ATTR_VALUE_TEMPERATURE_STATUS_NOT_AVAILABLE);

    auto const is = [](char const* value, char const* other) { return std::strcmp(value, other) == 0; };
    char const* status = Names::ATTR_VALUE_STATUS_OK;
    if (is(fan, Names::ATTR_VALUE_FAN_STATUS_FAILURE) ||
        is(temperature, Names::ATTR_VALUE_TEMPERATURE_STATUS_CRITICAL_CONDITION)) {
        status = Names::ATTR_VALUE_STATUS_CRITICAL;
    } else if (is(fan, Names::ATTR_VALUE_FAN_STATUS_DEGRADED) ||
               is(supply, Names::ATTR_VALUE_POWER_SUPPLY_STATUS_REDUNDANT_DEGRADED) ||
               is(temperature, Names::ATTR_VALUE_TEMPERATURE_STATUS_WARNING_CONDITION)) {
        status = Names::ATTR_VALUE_STATUS_DEGRADED;
    }
    publish(enclosure, Names::ATTR_NAME_STATUS, status);
}

Common::string portText(Common::string const& port, unsigned box) {
    Common::string const text = port.Trim();
    return text.empty() || text == "??" || box == UNKNOWN_BOX ? Common::string(Names::ATTR_VALUE_PORT_UNKNOWN)
                                                              : text;
}

template <class Record>
void publishPaths(Core::Device& enclosure, Record const& parameters) {
    unsigned const present = parameters.bRedundantPathPresentMap;
    if (present == 0) return;
    std::vector<BoxPath> paths;
    Common::string text;
    for (unsigned number = 0; number < PATHS; ++number) {
        if (!bit(present, number)) continue;
        paths.push_back(pathOf(parameters, number));
        if (!text.empty()) text += ",";
        text += textOf(paths.back());
    }
    publish(enclosure, Names::ATTR_NAME_MULTI_DOMAIN_PATHS, text);
    // Two paths through one port are lost with one cable.
    publish(enclosure, Names::ATTR_NAME_MULTI_DOMAIN_STATUS,
            (parameters.bRedundantPathFailureMap & present) != 0
                ? Names::ATTR_VALUE_MULTI_DOMAIN_STATUS_PATH_FAILURE
            : sharePort(paths) ? Names::ATTR_VALUE_MULTI_DOMAIN_STATUS_CABLING_NOT_RECOMMENDED
                               : Names::ATTR_VALUE_MULTI_DOMAIN_STATUS_OK);
    unsigned const active = parameters.bActivePathNumber;
    bool const isActive = active < PATHS && pathOf(parameters, active) == ownPath(parameters);
    publish(enclosure, Names::ATTR_NAME_IS_PATH_ACTIVE,
            isActive ? Names::ATTR_VALUE_IS_PATH_ACTIVE_TRUE : Names::ATTR_VALUE_IS_PATH_ACTIVE_FALSE);
}

template void publishPaths(Core::Device& device, Records::SENSE_BUS_PARAMETERS const& record);
template void publishPaths(Core::Device& device, Records::PHYSICAL_DRIVE_STATUS const& record);

void addPath(Core::Device& enclosure, Parameters const& parameters) {
    Common::string paths = enclosure.getValueFor(Names::ATTR_NAME_MULTI_DOMAIN_PATHS);
    if (paths.empty()) {
        paths =
            enclosure.getValueFor(Names::ATTR_NAME_PORT) + ":" + enclosure.getValueFor(Names::ATTR_NAME_BOX);
    }
    Common::string const added = textOf(ownPath(parameters));
    std::string const known = std::string(",") + paths.c_str() + ",";
    if (known.find(std::string(",") + added.c_str() + ",") == std::string::npos) paths += "," + added;
    publish(enclosure, Names::ATTR_NAME_MULTI_DOMAIN_PATHS, paths);
}

}  // namespace Operations
