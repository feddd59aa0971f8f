#include "storage/operations/storage_system_finder.h"

#include "core/device_finder.h"
#include "core/tolkmod.h"
#include "storage/vocabulary/device_types.h"

namespace Operations {
namespace {

class FilterStorageSystem : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override {
        namespace Names = Interface::StorageMod;
        Core::FilterReturn verdict;
        char const* const type = Interface::TOLKMod::Device::ATTR_NAME_TYPE;
        if (!device->hasAttributeAndIs(type, Names::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER) &&
            !device->hasAttributeAndIs(type, Names::HostBusAdapter::ATTR_VALUE_TYPE_HBA)) {
            verdict =
                Interface::TOLKMod::UnavailableOperationReason::ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE;
        }
        return verdict;
    }
};

}  // namespace

Common::shared_ptr<Core::Device> storageSystemFinder(Common::shared_ptr<Core::Device> device) {
    if (!device) return device;
    Core::DeviceFinder finder(device);
    finder.AddFilter(Common::shared_ptr<Core::Filter>(new FilterStorageSystem));
    return finder.find(Core::DeviceFinder::eUpward);
}

}  // namespace Operations
