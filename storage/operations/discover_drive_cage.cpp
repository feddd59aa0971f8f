#include "storage/operations/discover_drive_cage.h"

#include "common/debug_logger.h"
#include "storage/operations/bus_parameters.h"
#include "storage/operations/publish.h"
#include "storage/operations/publish_enclosure.h"
#include "storage/vocabulary/drive_cage.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::DriveCage;
using Parameters = Records::SENSE_BUS_PARAMETERS;

/// Of a product text, the character that tells what part of a duplex box it is.
constexpr unsigned DUPLEX_MARK = 15;

void offerCage(Schema::StorageEnclosure& enclosure, Schema::CageLocation const& place,
               Parameters const& record, Schema::PhysicalDriveMap const& drives, char half) {
    Common::shared_ptr<Core::Device> const cage(new Schema::DriveCage(
        place.bus, place.target, portText(memberText(record.sPhysicalPort), record.bPhysicalBox), drives));
    if (record.bInquiryValid != 0) {
        publish(*cage, Names::ATTR_NAME_PRODUCT_ID, memberText(record.boxInquiryData.sProductID));
        publish(*cage, Names::ATTR_NAME_VENDOR_ID, memberText(record.boxInquiryData.sVendorID));
        publish(*cage, Names::ATTR_NAME_FIRMWARE_REVISION,
                memberText(record.boxInquiryData.sProductRevision));
    }
    publish(*cage, Names::ATTR_NAME_DRIVE_BAYS, decimalText(record.bBayCount));
    publish(*cage, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_OK);
    if (half != 0) {
        publish(
            *cage, Names::ATTR_NAME_DUPLEX_LOCATION,
            half == 'T' ? Names::ATTR_VALUE_DUPLEX_LOCATION_TOP : Names::ATTR_VALUE_DUPLEX_LOCATION_BOTTOM);
    }
    enclosure.receive(cage);
}

/// The drives of a half, in the order of their numbers: the record tells no bay of any drive.
Schema::PhysicalDriveMap halfOf(Schema::PhysicalDriveMap const& drives, char half) {
    Schema::PhysicalDriveMap map(drives.size());
    unsigned const top = (drives.count() + 1) / 2;
    unsigned place = 0;
    for (unsigned short const number : drives.numbers()) {
        if ((place++ < top) == (half == 'T')) map.set(number);
    }
    return map;
}

/// The drives of a box, without those of another: a box without a serial number stands in the tree once for
/// each of its paths, and its drives must not.
Schema::PhysicalDriveMap ownDrives(Schema::StorageEnclosure const& enclosure,
                                   Schema::PhysicalDriveMap drives) {
    drives |= enclosure.contents().drives;
    if (Common::shared_ptr<Core::Device> const controller = enclosure.pParent()) {
        Schema::PhysicalDriveMap const ahead = contentsAheadOf(enclosure, *controller).drives;
        for (unsigned short const number : drives.numbers()) {
            if (!ahead.test(number)) continue;
            Common::DebugLogger::LogCommand("Drive %u of %s passed over: another box has it",
                                            static_cast<unsigned>(number), enclosure.toString().c_str());
        }
        drives -= ahead;
    }
    return drives;
}

}  // namespace

Core::OperationReturn DiscoverDriveCage::visit(Schema::StorageEnclosure& enclosure) {
    for (Schema::CageLocation const& place : enclosure.driveCageLocationList()) {
        // A second look that fails takes nothing away: the controller leaves these drives to the cage.
        Common::copy_ptr<Parameters> newest = enclosure.record();
        Schema::PhysicalDriveMap listed;
        SenseBox sense(place);
        if (sense.answers(enclosure)) {
            newest = sense.recordCopy();
            listed = installedDrives(sense);
        }
        if (newest.get() == nullptr) continue;
        Parameters const& record = *newest;
        Common::string const product =
            record.bInquiryValid != 0 ? wholeText(record.boxInquiryData.sProductID) : Common::string();
        char const mark = product.size() > DUPLEX_MARK ? product[DUPLEX_MARK] : '\0';
        Schema::PhysicalDriveMap const drives = ownDrives(enclosure, listed);
        if (mark == 'D') {
            for (char const half : {'T', 'B'})
                offerCage(enclosure, place, record, halfOf(drives, half), half);
        } else {
            offerCage(enclosure, place, record, drives, mark == 'T' || mark == 'B' ? mark : '\0');
        }
    }
    return Core::OperationReturn();
}

}  // namespace Operations
