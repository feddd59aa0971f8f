#include <algorithm>
#include <cstddef>

#include "storage/operations/publish.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;
using Records::SUBSYSTEM_PARAMETERS;

#define KSL_END(member) KSL_MEMBER_END(SUBSYSTEM_PARAMETERS, member)

/// What a board without a serial number tells.
constexpr char NO_SERIAL_NUMBER[] = "0000000000000000";

/// Ports that are reported of a controller, whatever it tells.
constexpr unsigned MOST_PORTS = 8;

Common::string serialNumber(Common::string const& text) {
    return text == NO_SERIAL_NUMBER ? Common::string() : text;
}

constexpr PublishRow<SUBSYSTEM_PARAMETERS> SUBSYSTEM_ROWS[] = {
    {Names::ATTR_NAME_CONTROLLER_SERIAL_NUMBER,
     [](auto& r) { return serialNumber(memberText(r.sControllerSerialNumber)); }},
    {Names::ATTR_NAME_CONTROLLER_CACHE_SERIAL_NUMBER,
     [](auto& r) { return serialNumber(memberText(r.sCacheSerialNumber)); }},
    {Names::ATTR_NAME_PORTS_INTERNAL, [](auto& r) { return decimalText(r.bInternalPortCount); }},
    {Names::ATTR_NAME_PORTS_EXTERNAL, [](auto& r) { return decimalText(r.bExternalPortCount); }},
    {Names::ATTR_NAME_PORTS,
     [](auto& r) { return decimalText(unsigned{r.bInternalPortCount} + r.bExternalPortCount); }},
    {Names::ATTR_NAME_CACHE_MODULE_MEMORY_TRANSFER_RATE,
     [](auto& r) {
         switch (r.wCacheModuleXferRate) {
             case 0x4E8:
                 return Common::string(Names::ATTR_VALUE_CACHE_MODULE_MEMORY_TRANSFER_RATE_1333);
             case 0x4EA:
                 return Common::string(Names::ATTR_VALUE_CACHE_MODULE_MEMORY_TRANSFER_RATE_1600);
             default:
                 return decimalText(r.wCacheModuleXferRate);
         }
     },
     KSL_END(wCacheModuleXferRate)},
};

constexpr PublishRow<SUBSYSTEM_PARAMETERS> CEDAR_ROWS[] = {
    {Names::ATTR_NAME_CEDAR_HBA_FIRMWARE_REV, [](auto& r) { return memberText(r.sHBAFirmwareRev); },
     KSL_END(sHBAFirmwareRev)},
    {Names::ATTR_NAME_CEDAR_HBA_MODE_OPTION_ROM_REV,
     [](auto& r) { return memberText(r.sHBAModeOptionROMRev); }, KSL_END(sHBAModeOptionROMRev)},
};

constexpr PublishRow<SUBSYSTEM_PARAMETERS> TEMPERATURE_ROWS[] = {
    {Names::ATTR_NAME_CONTROLLER_TEMPERATURE, [](auto& r) { return decimalText(r.bControllerTemperature); },
     KSL_END(bControllerTemperature)},
};

/// A bit of a managed cable's state, and the end of its attribute's name.
struct CableFlag {
    unsigned bit;
    char const* suffix;
};

constexpr CableFlag CABLE_FLAGS[] = {
    {0, "_CABLE_CONNECTED"},       {1, "_NON_VQ_CABLE_CONNECTED"},
    {2, "_CABLE_HAS_LINK_FAULTS"}, {3, "_FW_COMMUNICATION_ERROR"},
    {4, "_FW_DISABLED"},
};
constexpr std::uint32_t CABLE_CONNECTED = 1U << 0;

/// The name and its values are put together: one set of attributes a port.
void publishManagedCable(Core::Device& device, unsigned port, Records::MANAGED_CABLE_INFO const& cable) {
    Common::string const name = Common::string("ATTR_NAME_MANAGED_CABLE_PORT") + decimalText(port);
    Common::string const value = Common::string("ATTR_VALUE_MANAGED_CABLE_PORT") + decimalText(port);
    for (CableFlag const& flag : CABLE_FLAGS) {
        bool const isSet = (cable.dwCableState >> flag.bit & 1) != 0;
        publish(device, (name + flag.suffix).c_str(), value + flag.suffix + (isSet ? "_TRUE" : "_FALSE"));
    }
    bool const isConnected = (cable.dwCableState & CABLE_CONNECTED) != 0;
    Common::string const none;
    publishOrClear(device, (name + "_LENGTH").c_str(), isConnected ? decimalText(cable.wCableLength) : none);
    publishOrClear(device, (name + "_PARTNO").c_str(),
                   isConnected ? memberText(cable.bVendorPartNumber) : none);
    publishOrClear(device, (name + "_SERIALNO").c_str(),
                   isConnected ? memberText(cable.bVendorSerialNumber) : none);
}

/// Sixteen upper-case digits; nothing for a name of zeros, which is none.
Common::string wideName(Records::BYTE const (&bytes)[8]) {
    if (std::all_of(std::begin(bytes), std::end(bytes), [](auto byte) { return byte == 0; })) {
        return Common::string();
    }
    char text[17];
    for (unsigned i = 0; i < 8; ++i) {
        std::snprintf(&text[2 * i], 3, "%02X", static_cast<unsigned>(bytes[i]));
    }
    return text;
}

/// The name of the controller, and one for each port: the internal ones first.
void publishPortNames(Core::Device& device, SUBSYSTEM_PARAMETERS const& subsystem) {
    publish(device, Names::ATTR_NAME_WWN_PORT, wideName(subsystem.bPortName));
    unsigned const internalPorts = std::min<unsigned>(subsystem.bInternalPortCount, MOST_PORTS);
    unsigned const ports = std::min<unsigned>(internalPorts + subsystem.bExternalPortCount, MOST_PORTS);
    for (unsigned port = 0; port < ports; ++port) {
        auto const& info = port < internalPorts ? subsystem.additionalInternalPortInfo[port]
                                                : subsystem.additionalExternalPortInfo[port - internalPorts];
        publish(device, (Common::string(Names::ATTR_NAME_WWN_PORT) + decimalText(port)).c_str(),
                wideName(info.bSASAddress));
    }
}

/// Every record has the members up to the one that tells its length.
unsigned reachOf(SUBSYSTEM_PARAMETERS const& subsystem) {
    return std::max<unsigned>(subsystem.dwTotalStructureLength, KSL_END(dwTotalStructureLength));
}

}  // namespace

void publishSubsystemSystemInfo(Schema::ArrayController& controller, SUBSYSTEM_PARAMETERS const& subsystem) {
    unsigned const reach = reachOf(subsystem);
    publishRows(controller, SUBSYSTEM_ROWS, subsystem, reach);
    Common::string const family = controller.getValueFor(Names::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY);
    bool const isCedar = family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_CEDAR;
    if (isCedar) {
        publishRows(controller, CEDAR_ROWS, subsystem, reach);
    }
    if (isCedar || family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_DOGWOOD) {
        publishRows(controller, TEMPERATURE_ROWS, subsystem, reach);
    }
    // The shared storage of the blade families is reached by names.
    if (reach >= KSL_END(additionalExternalPortInfo) &&
        (family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_FIR ||
         family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_HARRIER)) {
        publishPortNames(controller, subsystem);
    }
    if (reach >= KSL_END(managedCableInfo)) {
        unsigned const ports = std::min<unsigned>(subsystem.bExternalPortCount, MOST_PORTS);
        for (unsigned port = 0; port < ports; ++port) {
            publishManagedCable(controller, port, subsystem.managedCableInfo[port]);
        }
    }
}

}  // namespace Operations
