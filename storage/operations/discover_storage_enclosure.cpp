#include "storage/operations/discover_storage_enclosure.h"

#include "common/debug_logger.h"
#include "storage/operations/publish.h"
#include "storage/operations/publish_enclosure.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/storage_enclosure.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::StorageEnclosure;

constexpr char GENERAL_NAME[] = "Storage Enclosure";

/// Of a product text, the character that tells a duplex box.
constexpr unsigned DUPLEX_MARK = 15;

struct NameRow {
    char const* product;  ///< without the blanks behind it
    char const* name;
};

constexpr NameRow MARKETING_NAMES[] = {
    {"VAULTSRV BP8", "Internal Drive Cage, 8 Bays"},
    {"VAULTSRV BP12", "Internal Drive Cage, 12 Bays"},
    {"VAULTSRV BP24", "Internal Drive Cage, 24 Bays"},
    {"510027 EvBd 255", "Evaluation Backplane"},
    {"VAULTSTACK D12", "VaultStack D12 Enclosure"},
    {"VAULTSTACK D25", "VaultStack D25 Enclosure"},
    {"VAULTSTACK 70  D", "VaultStack 70 Duplex Enclosure"},
    {"VAULTSTACK 70  T", "VaultStack 70 Duplex Enclosure, Top"},
    {"VAULTSTACK 70  B", "VaultStack 70 Duplex Enclosure, Bottom"},
};

void publishInquiry(Core::Device& enclosure, Records::SENSE_BUS_PARAMETERS const& parameters) {
    // Without a valid inquiry the texts are whatever the record held before.
    if (parameters.bInquiryValid == 0) return;
    Records::BOX_INQUIRY_DATA const& inquiry = parameters.boxInquiryData;
    publish(enclosure, Names::ATTR_NAME_PRODUCT_ID, memberText(inquiry.sProductID));
    publish(enclosure, Names::ATTR_NAME_VENDOR_ID, memberText(inquiry.sVendorID));
    publish(enclosure, Names::ATTR_NAME_FIRMWARE_REVISION, memberText(inquiry.sProductRevision));
}

Schema::BoxContents wholeContents(Box const& box) {
    Schema::BoxContents contents = contentsOf(*box.parameters);
    contents.drives = box.installedDrives;
    return contents;
}

bool isDuplex(Records::SENSE_BUS_PARAMETERS const& parameters) {
    Common::string const product = wholeText(parameters.boxInquiryData.sProductID);
    return parameters.bInquiryValid != 0 && product.size() > DUPLEX_MARK && product[DUPLEX_MARK] == 'D';
}

}  // namespace

Core::OperationReturn DiscoverStorageEnclosure::visit(Schema::ArrayController& controller) {
    return visit(controller, controller);
}

Core::OperationReturn DiscoverStorageEnclosure::visit(Core::Device& device, ConcreteBMICDevice& controller) {
    Common::string const family =
        device.getValueFor(Interface::StorageMod::ArrayController::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY);
    // What is found is offered when all of it is known: a second path belongs to what is offered, and a
    // device of an earlier discovery would lose it again.
    EnclosureList found;
    std::vector<Box> boxes;
    Core::OperationReturn result;
    if (!walkBoxes(controller, boxes, result)) return result;
    for (Box const& box : boxes) {
        if (isEnclosure(box, family)) discover(box, found);
    }
    for (Found const& enclosure : found)
        device.receive(enclosure.pointer);
    return result;
}

void DiscoverStorageEnclosure::discover(Box const& box, EnclosureList& found) {
    Records::SENSE_BUS_PARAMETERS const& parameters = *box.parameters;
    Common::string const serial = memberText(parameters.sChassisSerialNumber);
    for (Found const& known : found) {
        if (!serial.empty() && known.enclosure->hasAttributeAndIs(Names::ATTR_NAME_SERIAL_NUMBER, serial)) {
            addPath(*known.enclosure, parameters);
            known.enclosure->AddPlace(box.place);
            known.enclosure->AddContents(wholeContents(box));
            return;
        }
    }
    if (parameters.bSCSITargetID != box.place.target) {
        Common::DebugLogger::LogCommand(
            "Target number %u in the record of bus %u, target %u refused: what is there is asked for by that "
            "place",
            static_cast<unsigned>(parameters.bSCSITargetID), static_cast<unsigned>(box.place.bus),
            static_cast<unsigned>(box.place.target));
    }
    char const* const location = box.place.bus < INTERNAL_BUSES ? Names::ATTR_VALUE_LOCATION_INTERNAL
                                                                : Names::ATTR_VALUE_LOCATION_EXTERNAL;
    auto* const device = new Schema::StorageEnclosure(parameters.bPhysicalBox, serial, location,
                                                      boxIndexOf(box.place.bus, box.place.target));
    Common::shared_ptr<Core::Device> const enclosure(device);
    device->AddContents(wholeContents(box));
    device->SetRecord(box.parameters);
    publishAlarms(*enclosure, parameters.alarmData);
    publish(*enclosure, Names::ATTR_NAME_BUS_MODE,
            isDuplex(parameters) ? Names::ATTR_VALUE_BUS_MODE_DUPLEX : Names::ATTR_VALUE_BUS_MODE_SIMPLEX);
    publishPaths(*enclosure, parameters);
    publish(*enclosure, Names::ATTR_NAME_PORT,
            portText(memberText(parameters.sPhysicalPort), parameters.bPhysicalBox));
    publishInquiry(*enclosure, parameters);
    publishMarketingName(enclosure);
    found.push_back({device, enclosure});
}

Core::OperationReturn DiscoverStorageEnclosure::visit(Schema::HostBusAdapter& adapter) {
    for (CsmiEnclosure const& box : csmiEnclosures(adapter))
        ProcessCSMIEnclosure(adapter, box);
    return Core::OperationReturn();
}

/// Nobody but the processor tells of such a box: it has no alarms, no paths and no port.
void DiscoverStorageEnclosure::ProcessCSMIEnclosure(Schema::HostBusAdapter& adapter,
                                                    CsmiEnclosure const& box) {
    Common::shared_ptr<Core::Device> const enclosure(
        new Schema::StorageEnclosure(box.number, box.serialNumber, Names::ATTR_VALUE_LOCATION_EXTERNAL));
    publish(*enclosure, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_OK);
    publish(*enclosure, Names::ATTR_NAME_BUS_MODE, Names::ATTR_VALUE_BUS_MODE_SIMPLEX);
    publish(*enclosure, Names::ATTR_NAME_PORT, Names::ATTR_VALUE_PORT_UNKNOWN);
    publish(*enclosure, Names::ATTR_NAME_VENDOR_ID, box.vendor);
    publish(*enclosure, Names::ATTR_NAME_PRODUCT_ID, box.product);
    publish(*enclosure, Names::ATTR_NAME_FIRMWARE_REVISION, box.revision);
    publishMarketingName(enclosure);
    adapter.receive(enclosure);
}

void DiscoverStorageEnclosure::publishMarketingName(Common::shared_ptr<Core::Device> const& enclosure) {
    Common::string const product = enclosure->getValueFor(Names::ATTR_NAME_PRODUCT_ID);
    char const* name = GENERAL_NAME;
    for (NameRow const& row : MARKETING_NAMES) {
        if (product == row.product) name = row.name;
    }
    publish(*enclosure, Names::ATTR_NAME_MARKETING_NAME, name);
}

}  // namespace Operations
