#include "storage/operations/publish_sas_device.h"

#include <algorithm>
#include <cstring>

#include "command/controller_command.h"
#include "common/debug_logger.h"
#include "storage/operations/publish.h"
#include "storage/operations/publish_enclosure.h"
#include "storage/schema/drives.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/sep.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::SEP;
using Identify = Records::PHYSICAL_DRIVE_STATUS;

constexpr unsigned WWID_SIZE = 8;
constexpr unsigned PATHS = 8;
constexpr unsigned PORT_SIZE = 2;

bool isZero(unsigned char const* bytes, unsigned count) {
    return std::all_of(bytes, bytes + count, [](unsigned char byte) { return byte == 0; });
}

/// The path that the device is reached by. Ports and boxes of the paths stand one behind the other.
void publishActivePath(Core::Device& device, Identify const& identify) {
    unsigned const active = identify.bActivePathNumber;
    if (active >= PATHS || (identify.bRedundantPathPresentMap >> active & 1) == 0) return;
    static_assert(offsetof(Identify, sMultiPathPort8) ==
                  offsetof(Identify, sMultiPathPort1) + (PATHS - 1) * PORT_SIZE);
    static_assert(offsetof(Identify, bMultiPathBox8) == offsetof(Identify, bMultiPathBox1) + PATHS - 1);
    auto const* const record = reinterpret_cast<unsigned char const*>(&identify);
    char port[PORT_SIZE];
    std::memcpy(port, record + offsetof(Identify, sMultiPathPort1) + active * PORT_SIZE, PORT_SIZE);
    unsigned const box = record[offsetof(Identify, bMultiPathBox1) + active];
    publish(device, Names::ATTR_NAME_ACTIVE_PATH_PORT, portText(memberText(port), box));
    publish(device, Names::ATTR_NAME_ACTIVE_PATH_BOX, decimalText(box));
}

bool isMultiPathSupported(Common::shared_ptr<Core::Device> const& controller) {
    namespace Controller = Interface::StorageMod::ArrayController;
    return controller && controller->hasAttributeAndIs(Controller::ATTR_NAME_MULTI_PATH_SUPPORTED,
                                                       Controller::ATTR_VALUE_MULTI_PATH_SUPPORTED_TRUE);
}

}  // namespace

void publishSpecialInquiry(Core::Device& device, BMICDevice& controller, unsigned short bmicIndex) {
    SensePhysicalDriveCommand<PassThroughSpecialInquiryTrait, false> inquiry(bmicIndex);
    if (!inquiry(controller)) return;
    constexpr unsigned NEEDED = offsetof(Records::PASS_THROUGH_SPECIAL_INQUIRY, standardInquiryResponse) +
                                offsetof(Records::SCSI_STANDARD_INQUIRY_DATA, sProductRevisionLevel) +
                                sizeof(Records::SCSI_STANDARD_INQUIRY_DATA::sProductRevisionLevel);
    // Half a revision would pass for an older one.
    if (inquiry.receivedLength() < NEEDED || inquiry.record().bInquirySCSIStatus != 0) {
        Common::DebugLogger::LogCommand(
            "Inquiry data of device %u refused: %u bytes with status %u, at least %u with 0 expected",
            static_cast<unsigned>(bmicIndex), static_cast<unsigned>(inquiry.receivedLength()),
            static_cast<unsigned>(inquiry.record().bInquirySCSIStatus), NEEDED);
        return;
    }
    Records::SCSI_STANDARD_INQUIRY_DATA const& data = inquiry.record().standardInquiryResponse;
    publish(device, Names::ATTR_NAME_VENDOR_ID, memberText(data.sVendorID));
    publish(device, Names::ATTR_NAME_PRODUCT_ID, memberText(data.sProductID));
    publish(device, Names::ATTR_NAME_FIRMWARE_REVISION, memberText(data.sProductRevisionLevel));
}

void publishIdentity(Core::Device& device, Common::shared_ptr<Core::Device> const& controller,
                     BMICDevice& commands, unsigned short bmicIndex) {
    Common::copy_ptr<Identify> page;
    Core::OperationReturn outcome;
    unsigned received = 0;
    Schema::PhysicalDrive::identifyPhysicalDrive(controller, commands, bmicIndex, page, outcome, &received);
    // Half a WWID would be another's, or the same for several.
    if (!outcome || page.get() == nullptr || received < offsetof(Identify, bWWID) + WWID_SIZE) {
        publish(device, Names::ATTR_NAME_PORT, Names::ATTR_VALUE_PORT_UNKNOWN);
        return;
    }
    Identify const& record = *page;
    if (!isZero(record.bWWID, WWID_SIZE)) {
        publish(device, Names::ATTR_NAME_WWID,
                Conversion::arrayToString<unsigned char>(record.bWWID, WWID_SIZE, ""));
    }
    publish(device, Names::ATTR_NAME_PORT, portText(memberText(record.sPhysicalPort), record.bPhysicalBox));
    publish(device, Names::ATTR_NAME_BOX, decimalText(record.bPhysicalBox));
    if (received > offsetof(Identify, bMultiPathBox8) && isMultiPathSupported(controller))
        publishActivePath(device, record);
}

}  // namespace Operations
