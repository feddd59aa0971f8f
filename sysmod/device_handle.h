#pragma once

#include <cstdint>

#include "common/string.h"

namespace Core::SysMod {

/// Number of texts in a device handle.
inline constexpr unsigned PROPERTY_COUNT = 25;

/// What stands where in a device's property table. Discovery writes the table; everybody else reads it. A
/// place that has no name here is empty.
enum Property : unsigned {
    PciIdentity = 0,        ///< PCI vendor and device of the adapter, eight upper-case hexadecimal digits
    SubsystemIdentity = 1,  ///< PCI subsystem vendor and device, same form
    PciClass = 2,           ///< PCI class text of the adapter
    UniqueKey = 3,          ///< key of the adapter; every device behind an adapter has its adapter's
    NodePath = 4,           ///< device node, optionally with ":" and a controller number behind it
    AdapterSlot = 5,        ///< "S:" and the slot number, or "UNKNOWN"
    AdapterName = 6,        ///< name of the kernel driver
    FirmwareVersion = 7,
    RomVersion = 8,
    AdapterStatus = 9,      ///< "OK", "POWEROFF", "FAILED", "OFFLINE" or "UNKNOWN"
    PciLocation = 10,       ///< domain, bus, device and function as the kernel writes them
    PciLocationAgain = 11,  ///< the same text
    DriverVersion = 12,
    FastPath = 13,      ///< "NO", "YES:ENABLED" or "YES:DISABLED"
    SerialNumber = 14,  ///< of an adapter that tells it
    Description = 15,
    DescriptionAgain = 16,
    IdentityBytes = 17,  ///< unique identity bytes of a device, hexadecimal text
    DeviceIndex = 18,    ///< decimal text
    Route = 19,          ///< "QRTH:", "BMIC:" or "CSMI:" route; empty for a device reached by its node
    TransportKind = 20,  ///< of a volume: "SCSI", "SCSIPT", "ATA", "RAID" or "OTHER"
    DeviceType = 21,     ///< "ARRAY_CONTROLLER", "DUMB_HBA", "CSMI_HBA", "PHYSICAL_DRIVE", "SEP", ...
    ParentRoute = 22,    ///< route of the parent expander or adapter, in the "CSMI:" form
};

/// A device's properties, by the places above.
using PropertyTable = Common::string[PROPERTY_COUNT];

/// The table as one text, the device handle: all 25 texts joined by CR LF.
Common::string toDeviceInfo(Common::string const (&table)[PROPERTY_COUNT]);

/// Splits a handle into the table; texts beyond the 25th are refused with a log line.
void toPropertyTable(Common::string const& handle, Common::string (&table)[PROPERTY_COUNT]);

/// Codes of getDeviceType().
enum class EnDeviceType : unsigned char {
    PhysicalDrive = 0,
    TapeDrive = 1,
    Expander = 5,
    Sep = 6,
    Other = 8
};

/// The text of slot 21 for a code: "UNKNOWN" for any other than the four.
char const* toText(EnDeviceType code);

/// Where a CSMI pass-through goes: a phy of the adapter and the SAS address behind it.
struct CSMIAddress {
    std::uint8_t phy = 0;
    std::uint8_t sasAddress[8] = {};
};

Common::string getDeviceUniqueKey(Common::string const& handle);
std::uint16_t getDeviceIndex(Common::string const& handle);
/// Same adapter key and same route.
bool isSameDevice(Common::string const& left, Common::string const& right);
/// Bus number in a "QRTH:" address: byte 2 of a logical device's, byte 3 (low six bits) of any other's; 0
/// without such a route.
std::uint8_t getDeviceBusIndex(Common::string const& handle);
/// SAS address of a "CSMI:" route or address of a "QRTH:" route, as hexadecimal text; else empty.
Common::string getSasAddress(Common::string const& handle);
/// The same as eight bytes; what the route doesn't give stays zero.
void getSasAddress(Common::string const& handle, std::uint8_t (&bytes)[8]);
std::uint8_t getPhyIdentifier(Common::string const& handle);
Common::string getParentSasAddress(Common::string const& handle);
std::uint8_t getParentPhyIdentifier(Common::string const& handle);
EnDeviceType getDeviceType(Common::string const& handle);
/// Cell-based systems are not served: always false.
bool isCellBasedSystem();

/// Address of a "QRTH:" or "BMIC:" route. False for any other route, and for one with too few digits.
bool parseLogicalUnitAddress(Common::string const& route, std::uint8_t (&address)[8]);
/// Phy and SAS address of a "CSMI:" route. False without a ":" between the two or with too few digits.
bool parseCSMIAddress(Common::string const& route, CSMIAddress& address);

}  // namespace Core::SysMod
