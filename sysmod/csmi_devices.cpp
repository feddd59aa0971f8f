#include <algorithm>
#include <set>
#include <string>

#include "common/conversion.h"
#include "common/debug_logger.h"
#include "sysmod/command_handlers.h"
#include "sysmod/device_discovery.h"
#include "sysmod/device_handle.h"

namespace Interface::SysMod::Discovery {
namespace {

using namespace Core::SysMod;
using Common::DebugLogger;

/// Device types of a link's other end.
constexpr unsigned END_DEVICE = 1;
constexpr unsigned EDGE_EXPANDER = 2;
constexpr unsigned FANOUT_EXPANDER = 3;

unsigned deviceTypeOf(std::uint8_t byte) {
    return byte >> 4 & 7;
}

/// What an end device may serve as; without any it is another host's adapter, or this one.
constexpr std::uint8_t DRIVE_PROTOCOLS = 1 | 4 | 8;

/// Expanders in a row; a real topology has a few.
constexpr int DEPTH_LIMIT = 8;
/// Devices behind one adapter; each phy of a hostile expander could name a fresh one.
constexpr std::size_t DEVICE_LIMIT = 4096;

// SMP request and response frames (SAS), without CRC.
constexpr std::uint8_t SMP_REQUEST = 0x40;
constexpr std::uint8_t SMP_RESPONSE = 0x41;
constexpr std::uint8_t REPORT_GENERAL = 0x00;
constexpr std::uint8_t DISCOVER = 0x10;
constexpr unsigned REPORT_GENERAL_PHYS = 9;
constexpr unsigned DISCOVER_PHY = 9;
constexpr unsigned DISCOVER_ATTACHED_TYPE = 12;
constexpr unsigned DISCOVER_TARGET_PROTOCOLS = 15;
constexpr unsigned DISCOVER_ATTACHED_ADDRESS = 24;
constexpr unsigned DISCOVER_SIZE = 32;

/// SCSI peripheral device types that become devices.
struct PeripheralRow {
    std::uint8_t type;
    char const* deviceType;
    char const* line;
};

constexpr PeripheralRow PERIPHERALS[] = {
    {0x0D, "SEP", "SES Device. Product ID: %s"},
    {0x00, "PHYSICAL_DRIVE", "Direct Access Device. Product ID: %s"},
    {0x01, "TAPE_DRIVE", "Sequential Access Device. Product ID: %s"},
};

/// The other end of one link.
struct Attached {
    unsigned type = 0;
    std::uint8_t targetProtocols = 0;
};

/// Devices are kept by SAS address: a wide port and a second path lead to the same device again.
Common::string AddressUniqueID(std::uint8_t const (&sasAddress)[8]) {
    return Conversion::arrayToString(sasAddress, sizeof sasAddress, "");
}

Common::string routeTo(CSMIAddress const& address) {
    return Common::string("CSMI:") + Conversion::toString(static_cast<unsigned>(address.phy)) + ":" +
           AddressUniqueID(address.sasAddress);
}

class Walk {
  public:
    Walk(OpenDeviceNode const& node, Common::string const& handle, HandleMap& devices)
        : m_node(node), m_devices(devices) {
        toPropertyTable(handle, m_adapter);
    }

    void adapterPhys(CsmiPhyInfo const& record);
    unsigned count() const { return m_count; }

  private:
    void visit(unsigned phy, Attached const& attached, CSMIAddress const& address,
               Common::string const& parentRoute, int depth);
    void ProcessCSMIEndDevice(CSMIAddress const& address, Common::string const& parentRoute);
    void ProcessCSMIExpander(CSMIAddress const& address, Common::string const& parentRoute, int depth);
    bool sendSmp(CSMIAddress const& address, DataSpan request, unsigned char* response, std::uint32_t size);
    void add(CSMIAddress const& address, Common::string const& parentRoute, char const* type);

    OpenDeviceNode const& m_node;
    HandleMap& m_devices;
    PropertyTable m_adapter;
    std::set<std::string> m_seen;
    bool m_isFull = false;  ///< SAS addresses that were looked at
    unsigned m_count = 0;
};

void Walk::adapterPhys(CsmiPhyInfo const& record) {
    DebugLogger::LogCommand("CSMI GetPhysInfo returns %d phys", static_cast<int>(record.phyCount));
    unsigned count = record.phyCount;
    if (count > CsmiPhyInfo::PHYS) {
        DebugLogger::LogCommand(
            "CSMI phy information counts %u phys, the record holds %u; the rest is refused", count,
            CsmiPhyInfo::PHYS);
        count = CsmiPhyInfo::PHYS;
    }
    for (unsigned i = 0; i < count; ++i) {
        // Expanders show the adapter itself among what is attached to them.
        m_seen.insert(AddressUniqueID(record.phys[i].identify.sasAddress).c_str());
    }
    for (unsigned i = 0; i < count; ++i) {
        CsmiPhyEntity const& phy = record.phys[i];
        Attached attached;
        attached.type = deviceTypeOf(phy.attached.deviceType);
        attached.targetProtocols = phy.attached.targetProtocols;
        CSMIAddress own;
        CSMIAddress address;
        own.phy = phy.identify.phyIdentifier;
        address.phy = own.phy;
        std::copy_n(phy.identify.sasAddress, sizeof own.sasAddress, own.sasAddress);
        std::copy_n(phy.attached.sasAddress, sizeof address.sasAddress, address.sasAddress);
        visit(i, attached, address, routeTo(own), 0);
    }
}

void Walk::visit(unsigned phy, Attached const& attached, CSMIAddress const& address,
                 Common::string const& parentRoute, int depth) {
    if (m_seen.size() >= DEVICE_LIMIT) {
        if (!m_isFull) {
            DebugLogger::LogCommand("No more than %u devices are looked at",
                                    static_cast<unsigned>(DEVICE_LIMIT));
        }
        m_isFull = true;
        return;
    }
    switch (attached.type) {
        case END_DEVICE:
            DebugLogger::LogCommand("Phy %d: End device.", static_cast<int>(phy));
            if ((attached.targetProtocols & DRIVE_PROTOCOLS) != 0 &&
                m_seen.insert(AddressUniqueID(address.sasAddress).c_str()).second) {
                ProcessCSMIEndDevice(address, parentRoute);
            }
            break;
        case EDGE_EXPANDER:
        case FANOUT_EXPANDER:
            DebugLogger::LogCommand("Phy %d: Expander.", static_cast<int>(phy));
            if (m_seen.insert(AddressUniqueID(address.sasAddress).c_str()).second) {
                ProcessCSMIExpander(address, parentRoute, depth);
            }
            break;
        default:
            DebugLogger::LogCommand("Phy %d: Unknown or not connected.", static_cast<int>(phy));
            break;
    }
}

void Walk::ProcessCSMIEndDevice(CSMIAddress const& address, Common::string const& parentRoute) {
    constexpr unsigned char ALLOCATION = 0x5F;
    constexpr unsigned PRODUCT = 16;
    constexpr unsigned PRODUCT_SIZE = 16;
    unsigned char block[6] = {0x12, 0, 0, 0, ALLOCATION, 0};
    unsigned char reply[ALLOCATION] = {};
    unsigned char sense[Command::SENSE_BUFFER_SIZE] = {};
    std::uint32_t length = sizeof reply;
    std::uint8_t status = 0;
    CSMICommandHandler handler(false);
    bool const sent = handler.SendCSMISSPPassthruCommand(m_node, address, Command::EnTransferType::In,
                                                         {block, sizeof block}, {reply, sizeof reply}, length,
                                                         {sense, sizeof sense}, status);
    if (!sent || status != 0) {
        DebugLogger::LogCommand("INQUIRY of %s failed. Code: 0x%08X, SCSI status: 0x%02X",
                                routeTo(address).c_str(), static_cast<unsigned>(handler.lowLevelError()),
                                static_cast<unsigned>(status));
        return;
    }
    if (length < PRODUCT + PRODUCT_SIZE) {
        DebugLogger::LogCommand("INQUIRY of %s refused: %u bytes, at least %u expected",
                                routeTo(address).c_str(), static_cast<unsigned>(length),
                                PRODUCT + PRODUCT_SIZE);
        return;
    }
    Common::string const product =
        Common::string(reinterpret_cast<char const*>(reply), PRODUCT, PRODUCT_SIZE).TrimRight();
    for (PeripheralRow const& row : PERIPHERALS) {
        // The whole byte: a qualifier in its high bits says that no such unit is there.
        if (reply[0] == row.type) {
            DebugLogger::LogCommand(row.line, product.c_str());
            add(address, parentRoute, row.deviceType);
            return;
        }
    }
    DebugLogger::LogCommand("Peripheral type 0x%02X passed over. Product ID: %s",
                            static_cast<unsigned>(reply[0]), product.c_str());
}

bool Walk::sendSmp(CSMIAddress const& address, DataSpan request, unsigned char* response,
                   std::uint32_t size) {
    CSMICommandHandler handler(false);
    std::uint32_t returnCode = 0;
    DataSpan received = {response, size};
    if (!handler.SendSMPPassthruCommand(m_node, address, request, received, returnCode) || returnCode != 0) {
        DebugLogger::LogCommand("SMP request 0x%02X to %s failed. ReturnCode: 0x%08X, llError: 0x%08X",
                                static_cast<unsigned>(request.bytes[1]), routeTo(address).c_str(),
                                static_cast<unsigned>(returnCode),
                                static_cast<unsigned>(handler.lowLevelError()));
        return false;
    }
    if (received.size < size || response[0] != SMP_RESPONSE || response[1] != request.bytes[1]) {
        DebugLogger::LogCommand(
            "SMP response of %s refused: %u bytes, frame type 0x%02X, function 0x%02X; at least %u, 0x%02X "
            "and 0x%02X expected",
            routeTo(address).c_str(), static_cast<unsigned>(received.size),
            static_cast<unsigned>(response[0]), static_cast<unsigned>(response[1]),
            static_cast<unsigned>(size), static_cast<unsigned>(SMP_RESPONSE),
            static_cast<unsigned>(request.bytes[1]));
        return false;
    }
    return response[2] == 0;  // function accepted; a vacant phy is one that isn't
}

void Walk::ProcessCSMIExpander(CSMIAddress const& address, Common::string const& parentRoute, int depth) {
    add(address, parentRoute, "EXPANDER");
    if (depth == DEPTH_LIMIT) {
        DebugLogger::LogCommand("Expander %s: nothing behind it is looked at, %d expanders are before it",
                                routeTo(address).c_str(), depth);
        return;
    }
    unsigned char general[4] = {SMP_REQUEST, REPORT_GENERAL};
    unsigned char report[REPORT_GENERAL_PHYS + 1] = {};
    if (!sendSmp(address, {general, sizeof general}, report, sizeof report)) {
        return;
    }
    unsigned const count = report[REPORT_GENERAL_PHYS];
    DebugLogger::LogCommand("Expander reports %d phys", static_cast<int>(count));
    for (unsigned phy = 0; phy < count; ++phy) {
        unsigned char discover[12] = {SMP_REQUEST, DISCOVER};
        discover[DISCOVER_PHY] = static_cast<unsigned char>(phy);
        unsigned char response[DISCOVER_SIZE] = {};
        Attached attached;
        CSMIAddress next = address;
        if (sendSmp(address, {discover, sizeof discover}, response, sizeof response)) {
            attached.type = deviceTypeOf(response[DISCOVER_ATTACHED_TYPE]);
            attached.targetProtocols = response[DISCOVER_TARGET_PROTOCOLS];
            std::copy_n(response + DISCOVER_ATTACHED_ADDRESS, sizeof next.sasAddress, next.sasAddress);
        }
        visit(phy, attached, next, routeTo(address), depth + 1);
    }
}

/// A device that an earlier discovery left in the map is replaced.
void Walk::add(CSMIAddress const& address, Common::string const& parentRoute, char const* type) {
    PropertyTable table;
    table[UniqueKey] = m_adapter[UniqueKey];
    table[NodePath] = m_adapter[NodePath];
    table[Route] = routeTo(address);
    table[DeviceType] = type;
    table[ParentRoute] = parentRoute;
    m_devices.insert(Common::pair<Common::string, Common::string>(AddressUniqueID(address.sasAddress),
                                                                  toDeviceInfo(table)));
    ++m_count;
}

}  // namespace

void DiscoverCSMIPhysicalDevices(Common::string const& handle, HandleMap& devices) {
    DebugLogger::LogCommand("Entered DiscoverCSMIPhysicalDevices");
    PropertyTable table;
    toPropertyTable(handle, table);
    OpenDeviceNode const node(table, false);
    if (!node.isOpen()) {
        DebugLogger::LogCommand("Node open failed in DiscoverCSMIPhysicalDevices. Code: 0x%08X",
                                static_cast<unsigned>(node.openError()));
        return;
    }
    CSMICommandHandler handler(false);
    CsmiPhyInfo record;
    std::uint32_t returnCode = 0;
    if (!handler.SendPhyInfoCommand(node, record, returnCode) || returnCode != 0) {
        DebugLogger::LogCommand(
            "CSMI GetPhyInfo failed in DiscoverCSMIPhysicalDevices. ReturnCode: 0x%08X, llError: 0x%08X",
            static_cast<unsigned>(returnCode), static_cast<unsigned>(handler.lowLevelError()));
        return;
    }
    Walk walk(node, handle, devices);
    walk.adapterPhys(record);
    DebugLogger::LogCommand("DiscoverCSMIPhysicalDevices discovered %d devices",
                            static_cast<int>(walk.count()));
}

}  // namespace Interface::SysMod::Discovery
