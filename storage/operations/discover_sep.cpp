#include "storage/operations/discover_sep.h"

#include <algorithm>

#include "command/scsi/inquiry_commands.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "storage/operations/csmi_enclosures.h"
#include "storage/operations/listed_devices.h"
#include "storage/operations/physical_device_iterator.h"
#include "storage/operations/publish.h"
#include "storage/operations/publish_sas_device.h"
#include "storage/operations/sep_models.h"
#include "storage/operations/sep_utils.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/operations/subcomponent_versions.h"
#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/sep.h"
#include "storage/vocabulary/storage_enclosure.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::SEP;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr char GENERAL_NAME[] = "SEP";

/// What stands for the type of a processor that no box lists.
constexpr unsigned char NO_TYPE = 0;

/// The type that the box tells comes first; the product decides where it tells none.
void publishKind(DevicePointer const& sep, unsigned char typeCode) {
    SepModelRow const* const model = findSepModel(SepUtils::getProductId(sep));
    Common::string type = Schema::SEP::sepType(typeCode);
    if (type == Names::ATTR_VALUE_SEP_TYPE_UNKNOWN && model != nullptr) type = model->type;
    publish(*sep, Names::ATTR_NAME_SEP_TYPE, type);
    publish(*sep, Names::ATTR_NAME_MARKETING_NAME, model != nullptr ? model->marketingName : GENERAL_NAME);
}

void publishSepInfo(DevicePointer const& controller, BMICDevice& commands, DevicePointer const& sep,
                    Schema::SEP& device, unsigned char typeCode) {
    publishSpecialInquiry(*sep, commands, device.bmicIndex());
    publishIdentity(*sep, controller, commands, device.bmicIndex());
    if (!sep->hasAttribute(Names::ATTR_NAME_WWID)) {
        publishOrClear(*sep, Names::ATTR_NAME_WWID, PhysicalDeviceIterator::getSasAddress(device.handle()));
    }
    publishKind(sep, typeCode);
}

/// `parent` is the enclosure or the controller itself.
void discover(Core::Device& parent, DevicePointer const& controller, BMICDevice& commands,
              Common::string const& handle, unsigned number, unsigned char typeCode) {
    Schema::SEP* const device = new Schema::SEP(handle);
    DevicePointer const sep(device);
    publish(*sep, Names::ATTR_NAME_DEVICE_NUMBER, decimalText(number));
    publish(*sep, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_OK);
    publishSepInfo(controller, commands, sep, *device, typeCode);
    publishSubcomponentVersionInfo(sep, *device);
    parent.receive(sep);
}

void discoverBehindController(Schema::StorageEnclosure& enclosure, DevicePointer const& controller,
                              unsigned char boxIndex) {
    std::vector<Schema::ListedSep> const seps = contentsNow(enclosure, *controller, boxIndex).seps;
    if (seps.empty()) return;
    std::vector<unsigned short> numbers;
    for (Schema::ListedSep const& sep : seps)
        numbers.push_back(sep.number);
    // A processor of which nobody knows the address counts all the same: by their number a controller's
    // memory is written, and a flash that can't reach it must fail and be told, not be left out without a
    // word.
    ListedDevices const devices(controller, PhysicalDeviceIterator::SEP_TYPE, numbers);
    for (Schema::ListedSep const& sep : seps) {
        if (!devices.mayHave(sep.number)) continue;
        discover(enclosure, controller, enclosure, devices.handleOf(sep.number), sep.number, sep.type);
    }
}

/// All that is known of these comes from themselves and from the way to them.
void discoverBehindAdapter(Schema::StorageEnclosure& enclosure, ConcreteSCSIDevice const& adapter) {
    namespace Box = Interface::StorageMod::StorageEnclosure;
    Common::string const number = enclosure.getValueFor(Box::ATTR_NAME_BOX);
    Common::string const serial = enclosure.getValueFor(Box::ATTR_NAME_SERIAL_NUMBER);
    for (CsmiEnclosure const& box : csmiEnclosures(adapter)) {
        // Numbers count the boxes of one look; a serial number stays.
        if (box.serialNumber.empty() ? !serial.empty() || decimalText(box.number) != number
                                     : box.serialNumber.Trim() != serial) {
            continue;
        }
        for (Common::string const& handle : box.seps) {
            Schema::SEP* const device = new Schema::SEP(handle);
            DevicePointer const sep(device);
            publish(*sep, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_OK);
            publish(*sep, Names::ATTR_NAME_BOX, number);
            publish(*sep, Names::ATTR_NAME_PORT, Names::ATTR_VALUE_PORT_UNKNOWN);
            publish(*sep, Names::ATTR_NAME_WWID, PhysicalDeviceIterator::getSasAddress(handle));
            ReportStandardInquiry inquiry;
            if (inquiry(*device)) {
                publish(*sep, Names::ATTR_NAME_VENDOR_ID, inquiry.vendorId());
                publish(*sep, Names::ATTR_NAME_PRODUCT_ID, inquiry.productId());
                publish(*sep, Names::ATTR_NAME_FIRMWARE_REVISION, inquiry.productRevision());
            }
            publishKind(sep, NO_TYPE);
            publishSubcomponentVersionInfo(sep, *device);
            enclosure.receive(sep);
        }
    }
}

}  // namespace

Core::OperationReturn DiscoverSEP::visit(Schema::StorageEnclosure& enclosure) {
    namespace Status = Interface::TOLKMod::OperationReturn;
    Common::string const boxIndex =
        enclosure.getValueFor(Interface::StorageMod::StorageEnclosure::ATTR_NAME_BOX_INDEX);
    DevicePointer const system = storageSystemFinder(enclosure.getDevicePtr());
    auto const* const adapter = dynamic_cast<ConcreteSCSIDevice const*>(system.get());
    if (boxIndex.empty() || adapter == nullptr) {
        return Core::OperationReturn(Status::ATTR_VALUE_STATUS_FAILURE);
    }
    if (dynamic_cast<Schema::HostBusAdapter const*>(system.get()) != nullptr) {
        discoverBehindAdapter(enclosure, *adapter);
    } else {
        discoverBehindController(enclosure, system,
                                 static_cast<unsigned char>(Conversion::toNumber<unsigned short>(boxIndex)));
    }
    return Core::OperationReturn();
}

Core::OperationReturn DiscoverSEP::visit(Schema::ArrayController& controller) {
    constexpr unsigned char TYPE = PhysicalDeviceIterator::SEP_TYPE;
    PhysicalDeviceIterator const devices(controller);
    if (devices.size(TYPE) == 0) return Core::OperationReturn();
    Schema::BoxContents const inEnclosures = contentsOfEnclosures(controller);
    // Boxes that are no enclosures tell the types of theirs.
    Core::OperationReturn result;
    std::vector<Box> boxes;
    walkBoxes(controller, boxes, result);
    Schema::BoxContents listed;
    for (Box const& box : boxes)
        listed.add(contentsOf(*box.parameters));
    for (auto handle = devices.begin(TYPE); handle != devices.end(TYPE); ++handle) {
        unsigned short const number = Core::SysMod::getDeviceIndex(*handle);
        if (inEnclosures.hasSep(number)) continue;
        auto const sep =
            std::find_if(listed.seps.begin(), listed.seps.end(),
                         [number](Schema::ListedSep const& each) { return each.number == number; });
        bool const isAmbiguous =
            std::count_if(devices.begin(TYPE), devices.end(TYPE), [number](Common::string const& each) {
                return Core::SysMod::getDeviceIndex(each) == number;
            }) > 1;
        if (isAmbiguous) {
            Common::DebugLogger::LogCommand("Processor %u can't be addressed: it is listed several times",
                                            static_cast<unsigned>(number));
        }
        discover(controller, controller.getDevicePtr(), controller, isAmbiguous ? Common::string() : *handle,
                 number, sep == listed.seps.end() ? NO_TYPE : sep->type);
    }
    return result;
}

}  // namespace Operations
