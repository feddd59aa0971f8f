#include "storage/host_bus_adapter_models.h"
#include "storage/operations/adapter_properties.h"
#include "storage/operations/discover_controllers.h"
#include "storage/operations/publish.h"
#include "storage/schema/adapters.h"
#include "storage/schema/mod_root.h"
#include "storage/vocabulary/array_controller_names.h"
#include "storage/vocabulary/host_bus_adapter.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::HostBusAdapter;

constexpr char GENERAL_NAME[] = "Host Bus Adapter";

void PublishHBAName(Core::Device* device) {
    Common::string const identifier = device->getValueFor(Names::ATTR_NAME_SUBSYSTEM_ID);
    for (auto const& row : Interface::StorageMod::hostBusAdapterModels()) {
        if (identifier == decimalText(row.identifier)) {
            publish(*device, Names::ATTR_NAME_HBA_NAME, row.nameConstant);
        }
    }
}

Common::string HBAMarketingNameFor(Core::Device* device) {
    Common::string const identifier = device->getValueFor(Names::ATTR_NAME_SUBSYSTEM_ID);
    for (auto const& row : Interface::StorageMod::hostBusAdapterModels()) {
        if (identifier == decimalText(row.identifier)) {
            return row.marketingName;
        }
    }
    return GENERAL_NAME;
}

void publishPciFields(Core::Device& device, AdapterProperties const& adapter) {
    struct Field {
        char const* attribute;
        Common::string const& value;
        char const* unknown;
    };
    Field const fields[] = {
        {Names::ATTR_NAME_PCI_DOMAIN, adapter.domain, UNKNOWN_PCI_DOMAIN},
        {Names::ATTR_NAME_PCI_BUS, adapter.bus, UNKNOWN_PCI_FIELD},
        {Names::ATTR_NAME_PCI_DEVICE, adapter.device, UNKNOWN_PCI_FIELD},
        {Names::ATTR_NAME_PCI_FUNCTION, adapter.function, UNKNOWN_PCI_FIELD},
    };
    for (Field const& field : fields) {
        if (field.value != field.unknown) {
            publish(device, field.attribute, field.value);
        }
    }
}

void SetHBAProperties(Core::Device* device, Common::string const& handle) {
    AdapterProperties const adapter(handle);
    publish(*device, Names::ATTR_NAME_SUBSYSTEM_ID, decimalOfHex(adapter.subsystemIdHex));
    publish(*device, Names::ATTR_NAME_SUBSYSTEM_ID_HEX, adapter.subsystemIdHex);
    publish(*device, Names::ATTR_NAME_DEVICE_ID, decimalOfHex(adapter.deviceIdHex));
    publish(*device, Names::ATTR_NAME_DEVICE_ID_HEX, adapter.deviceIdHex);
    publishPciFields(*device, adapter);
    if (adapter.kind != CSMI_ADAPTER) {
        publish(*device, Names::ATTR_NAME_ADAPTER_TYPE, Names::ATTR_VALUE_ADAPTER_TYPE_GENERIC_HBA);
        return;
    }
    publish(*device, Names::ATTR_NAME_ADAPTER_TYPE, Names::ATTR_VALUE_ADAPTER_TYPE_CSMI_HBA);
    publish(*device, Names::ATTR_NAME_BUS_TYPE, Names::ATTR_VALUE_BUS_TYPE_PCI);
    publish(*device, Names::ATTR_NAME_SLOT,
            adapter.slot.empty() ? Common::string(Names::ATTR_VALUE_SLOT_UNKNOWN) : adapter.slot);
    PublishHBAName(device);
    publish(*device, Names::ATTR_NAME_MARKETING_NAME, HBAMarketingNameFor(device));
    publish(*device, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_OK);
    publish(*device, Names::ATTR_NAME_FIRMWARE_VERSION, adapter.firmwareVersion);
    publish(*device, Names::ATTR_NAME_OPTION_ROM_VERSION, adapter.romVersion);
    publish(*device, Names::ATTR_NAME_SERIAL_NUMBER, adapter.serialNumber);
}

void discoverGroup(Schema::ModRoot& root, StorageAdapterIterator::List const& handles) {
    for (auto handle = handles.begin(); handle != handles.end(); ++handle) {
        Common::shared_ptr<Core::Device> const device(new Schema::HostBusAdapter(*handle));
        SetHBAProperties(device.get(), *handle);
        root.receive(device);
    }
}

}  // namespace

Core::OperationReturn DiscoverHostBusAdapter::visit(Schema::ModRoot& root) {
    StorageAdapterIterator const adapters;
    discoverGroup(root, adapters.csmiAdapters());
    discoverGroup(root, adapters.plainAdapters());
    return Core::OperationReturn();
}

}  // namespace Operations
