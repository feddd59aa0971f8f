#include "storage/operations/discover_expander.h"

#include <algorithm>

#include "core/tolkmod.h"
#include "storage/operations/bus_parameters.h"
#include "storage/operations/listed_devices.h"
#include "storage/operations/physical_device_iterator.h"
#include "storage/operations/publish.h"
#include "storage/operations/publish_sas_device.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/sas_devices.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/expander.h"
#include "storage/vocabulary/storage_enclosure.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::Expander;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr unsigned char TYPE = PhysicalDeviceIterator::EXPANDER_TYPE;

void discover(Core::Device& parent, DevicePointer const& controller, BMICDevice& commands,
              Common::string const& handle, unsigned short number) {
    DevicePointer const expander(new Schema::Expander(handle));
    publish(*expander, Names::ATTR_NAME_DEVICE_NUMBER, decimalText(number));
    publish(*expander, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_OK);
    publishSpecialInquiry(*expander, commands, number);
    publishIdentity(*expander, controller, commands, number);
    if (!expander->hasAttribute(Names::ATTR_NAME_WWID)) {
        publishOrClear(*expander, Names::ATTR_NAME_WWID, PhysicalDeviceIterator::getSasAddress(handle));
    }
    parent.receive(expander);
}

}  // namespace

Core::OperationReturn DiscoverExpander::visit(Schema::StorageEnclosure& enclosure) {
    Common::string const boxIndex =
        enclosure.getValueFor(Interface::StorageMod::StorageEnclosure::ATTR_NAME_BOX_INDEX);
    DevicePointer const system = storageSystemFinder(enclosure.getDevicePtr());
    if (boxIndex.empty() || !system) {
        return Core::OperationReturn(Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_FAILURE);
    }
    if (dynamic_cast<Schema::ArrayController const*>(system.get()) == nullptr) return Core::OperationReturn();
    std::vector<unsigned short> const numbers =
        contentsNow(enclosure, *system,
                    static_cast<std::uint8_t>(Conversion::toNumber<unsigned short>(boxIndex)))
            .expanders;
    if (numbers.empty()) return Core::OperationReturn();
    ListedDevices const devices(system, TYPE, numbers);
    for (unsigned short const number : numbers) {
        if (devices.mayHave(number)) discover(enclosure, system, enclosure, devices.handleOf(number), number);
    }
    return Core::OperationReturn();
}

Core::OperationReturn DiscoverExpander::visit(Schema::ArrayController& controller) {
    PhysicalDeviceIterator const devices(controller);
    if (devices.size(TYPE) == 0) return Core::OperationReturn();
    Schema::BoxContents const inEnclosures = contentsOfEnclosures(controller);
    for (auto handle = devices.begin(TYPE); handle != devices.end(TYPE); ++handle) {
        unsigned short const number = Core::SysMod::getDeviceIndex(*handle);
        if (!inEnclosures.hasExpander(number)) {
            discover(controller, controller.getDevicePtr(), controller, *handle, number);
        }
    }
    return Core::OperationReturn();
}

}  // namespace Operations
