#include "command/controller_command.h"
#include "storage/operations/discover_physical_drive.h"
#include "storage/operations/drive_maps.h"
#include "storage/operations/listed_devices.h"
#include "storage/operations/physical_device_iterator.h"
#include "storage/operations/publish.h"
#include "storage/operations/publish_enclosure.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/drives.h"
#include "storage/schema/enclosure.h"
#include "storage/vocabulary/tape_drive.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::TapeDrive;
using Inquiry = Records::PASS_THROUGH_SPECIAL_INQUIRY;
using DevicePointer = Common::shared_ptr<Core::Device>;

#define KSL_END(member) KSL_MEMBER_END(PASS_THROUGH_SPECIAL_INQUIRY, member)

constexpr unsigned PERIPHERAL_TYPE_BITS = 0x1F;
constexpr unsigned SEQUENTIAL_ACCESS = 1;

/// In a product identifier it stands before the speed of a drive that can recover a machine by one button.
constexpr char RECOVERY_MARK[] = "DR-";

/// Each page comes with the status that it was answered with; of a refused one the record has old bytes.
template <class Member>
Common::string ifGood(unsigned char scsiStatus, Member const& member) {
    return scsiStatus == 0 ? memberText(member) : Common::string();
}

constexpr PublishRow<Inquiry> TAPE_ROWS[] = {
    {Names::ATTR_NAME_VENDOR_ID, [](auto& r) { return memberText(r.standardInquiryResponse.sVendorID); },
     KSL_END(standardInquiryResponse)},
    {Names::ATTR_NAME_PRODUCT_ID, [](auto& r) { return memberText(r.standardInquiryResponse.sProductID); },
     KSL_END(standardInquiryResponse)},
    {Names::ATTR_NAME_REVISION_LEVEL,
     [](auto& r) { return memberText(r.standardInquiryResponse.sProductRevisionLevel); },
     KSL_END(standardInquiryResponse)},
    {Names::ATTR_NAME_SERIAL_NUMBER,
     [](auto& r) {
         return ifGood(r.bDeviceInformationPageSCSIStatus, r.deviceInformationResponse.sSerialNumber);
     },
     KSL_END(deviceInformationResponse)},
    {Names::ATTR_NAME_KESTAL_VENDOR_ID,
     [](auto& r) { return ifGood(r.bKestalInquiryPageSCSIStatus, r.kestalInquiryResponse.sVendorID); },
     KSL_END(kestalInquiryResponse)},
    {Names::ATTR_NAME_KESTAL_PRODUCT_ID,
     [](auto& r) { return ifGood(r.bKestalInquiryPageSCSIStatus, r.kestalInquiryResponse.sProductID); },
     KSL_END(kestalInquiryResponse)},
    {Names::ATTR_NAME_KESTAL_REVISION_LEVEL,
     [](auto& r) {
         return ifGood(r.bKestalInquiryPageSCSIStatus, r.kestalInquiryResponse.sProductRevisionLevel);
     },
     KSL_END(kestalInquiryResponse)},
};

/// Where the drive is. A controller that doesn't tell leaves the port unknown.
void publishPlace(Core::Device& tape, DevicePointer const& controller, BMICDevice& commands,
                  unsigned short number) {
    Common::copy_ptr<Records::PHYSICAL_DRIVE_STATUS> place;
    Core::OperationReturn outcome;
    unsigned received = 0;
    Schema::PhysicalDrive::identifyPhysicalDrive(controller, commands, number, place, outcome, &received);
    constexpr unsigned REACH = KSL_MEMBER_END(PHYSICAL_DRIVE_STATUS, bMultiPathBox8);
    if (!outcome || received < REACH) {
        publish(tape, Names::ATTR_NAME_PORT, Names::ATTR_VALUE_PORT_UNKNOWN);
        return;
    }
    constexpr unsigned UNKNOWN = 0xFF;
    publish(tape, Names::ATTR_NAME_PORT, portText(memberText(place->sPhysicalPort), place->bPhysicalBox));
    if (place->bPhysicalBox != UNKNOWN) publish(tape, Names::ATTR_NAME_BOX, decimalText(place->bPhysicalBox));
    if (place->bPhysicalBay != UNKNOWN) publish(tape, Names::ATTR_NAME_BAY, decimalText(place->bPhysicalBay));
    publish(tape, Names::ATTR_NAME_SCSI_BUS, decimalText(place->bSCSIBus));
    publish(tape, Names::ATTR_NAME_SCSI_ID, decimalText(place->bSCSIID));
    publishPaths(tape, *place);
}

}  // namespace

Core::OperationReturn DiscoverTapeDrive::visit(Schema::ArrayController& controller) {
    return discover(controller, controller);
}

Core::OperationReturn DiscoverTapeDrive::visit(Schema::DriveCage& cage) {
    return discover(cage, cage);
}

Core::OperationReturn DiscoverTapeDrive::discover(Core::Device& parent, BMICDevice& commands) {
    Core::OperationReturn result;
    DriveMaps maps;
    if (!readDriveMaps(parent, commands, maps, result) || !maps.others.any()) return result;
    DevicePointer const controller = storageSystemFinder(parent.getDevicePtr());
    ListedDevices const devices(controller, PhysicalDeviceIterator::TAPE_TYPE);
    for (unsigned short const number : maps.others.numbers()) {
        SensePhysicalDriveCommand<PassThroughSpecialInquiryTrait, false> inquiry(number);
        Inquiry const& record = inquiry.record();
        // The controller may answer for a drive that didn't: zeros, which would tell of a disk.
        bool const answered = inquiry(commands) &&
                              inquiry.receivedLength() >= KSL_END(standardInquiryResponse) &&
                              record.bInquirySCSIStatus == 0;
        unsigned const type =
            record.standardInquiryResponse.deviceInfo.bPeripheralType & PERIPHERAL_TYPE_BITS;
        if (answered ? type != SEQUENTIAL_ACCESS : !devices.has(number)) continue;
        DevicePointer const tape(new Schema::TapeDrive(devices.handleOf(number), number));
        publish(*tape, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_OK);
        if (answered) publishRows(*tape, TAPE_ROWS, record, inquiry.receivedLength());
        if (tape->getValueFor(Names::ATTR_NAME_PRODUCT_ID).find(RECOVERY_MARK) != Common::string::npos) {
            publish(*tape, Names::ATTR_NAME_OBDR_MODE, Names::ATTR_VALUE_OBDR_MODE_ENABLED);
        }
        publishPlace(*tape, controller, commands, number);
        parent.receive(tape);
    }
    return result;
}

}  // namespace Operations
