#include "storage/operations/discover_phy.h"

#include <algorithm>
#include <iterator>

#include "command/controller_command.h"
#include "common/debug_logger.h"
#include "storage/operations/publish.h"
#include "storage/schema/drives.h"
#include "storage/schema/sas_devices.h"
#include "storage/vocabulary/phy.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::Phy;
using Identify = Records::PHYSICAL_DRIVE_STATUS;

constexpr unsigned PHYS = std::size(Identify{}.bPHYConnectedDeviceType);
constexpr std::uint16_t NOTHING_ATTACHED = Schema::NO_BMIC_INDEX;

/// What is at the other end; 1 to 3 as in the identify address frame of SAS.
constexpr CodeRow ATTACHED_TYPES[] = {
    {0, Names::ATTR_VALUE_ATTACHED_DEVICE_TYPE_NONE},
    {1, Names::ATTR_VALUE_ATTACHED_DEVICE_TYPE_END_DEVICE},
    {2, Names::ATTR_VALUE_ATTACHED_DEVICE_TYPE_EXPANDER},
    {3, Names::ATTR_VALUE_ATTACHED_DEVICE_TYPE_EXPANDER},
    {4, Names::ATTR_VALUE_ATTACHED_DEVICE_TYPE_SEP},
    {5, Names::ATTR_VALUE_ATTACHED_DEVICE_TYPE_CONTROLLER},
};

Common::shared_ptr<Core::Device> phyOf(Identify const& record, unsigned number) {
    Common::shared_ptr<Core::Device> const phy(new Schema::Phy(static_cast<unsigned short>(number)));
    publish(*phy, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_OK);
    publish(*phy, Names::ATTR_NAME_NEGOTIATED_LINK_RATE,
            Schema::PhysicalDrive::negotiatedLinkRate(record.bNegotiatedLinkRate[number]));
    publish(*phy, Names::ATTR_NAME_ATTACHED_DEVICE_TYPE,
            valueOf(ATTACHED_TYPES, record.bPHYConnectedDeviceType[number],
                    Names::ATTR_VALUE_ATTACHED_DEVICE_TYPE_UNKNOWN));
    std::uint16_t const attached = fromWire<std::uint16_t>(record.wPHYToAttachedDeviceIndex[number]);
    if (attached != NOTHING_ATTACHED && record.bPHYConnectedDeviceType[number] != 0) {
        publish(*phy, Names::ATTR_NAME_ATTACHED_BMIC_INDEX, decimalText(attached));
    }
    return phy;
}

}  // namespace

Core::OperationReturn DiscoverPhy::visit(Schema::PhysicalDrive& drive) {
    return discover(drive, drive, drive.physicalDriveNumber());
}

Core::OperationReturn DiscoverPhy::visit(Schema::Expander& expander) {
    return discover(expander, expander, expander.bmicIndex());
}

Core::OperationReturn DiscoverPhy::visit(Schema::SEP& sep) {
    return discover(sep, sep, sep.bmicIndex());
}

Core::OperationReturn DiscoverPhy::discover(Core::Device& device, BMICDevice& controller,
                                            unsigned short const& bmicIndex) {
    Core::OperationReturn result;
    if (bmicIndex == Schema::NO_BMIC_INDEX) return result;
    Common::copy_ptr<Identify> page;
    unsigned received = 0;
    Schema::PhysicalDrive::identifyPhysicalDrive(device.pParent(), controller, bmicIndex, page, result,
                                                 &received);
    if (!result || page.get() == nullptr) return result;
    constexpr unsigned NEEDED =
        offsetof(Identify, wPHYToAttachedDeviceIndex) + sizeof(Identify::wPHYToAttachedDeviceIndex);
    if (received < NEEDED) {
        Common::DebugLogger::LogCommand("Phys of device %u refused: %u bytes came, at least %u expected",
                                        static_cast<unsigned>(bmicIndex), received, NEEDED);
        return result;
    }
    Identify const& record = *page;
    unsigned count = fromWire<std::uint16_t>(record.wPHYCount);
    if (count > PHYS) {
        Common::DebugLogger::LogCommand(
            "Device %u tells of %u phys, its record has room for %u; the rest is "
            "refused",
            static_cast<unsigned>(bmicIndex), count, PHYS);
        count = PHYS;
    }
    for (unsigned number = 0; number < count; ++number)
        device.receive(phyOf(record, number));
    return result;
}

}  // namespace Operations
