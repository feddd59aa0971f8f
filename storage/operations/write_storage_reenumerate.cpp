#include "storage/operations/write_storage_reenumerate.h"

#include "command/device_command_return.h"
#include "core/device.h"
#include "storage/operations/choice_capability.h"
#include "storage/vocabulary/device.h"
#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/operations.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod;
namespace Status = Interface::TOLKMod::OperationReturn;
using DevicePointer = Common::shared_ptr<Core::Device>;
using ResultList = Core::Device::ResultList;

/// The children of a type that a discovery of a controller makes.
struct SideRow {
    char const* discovery;
    char const* type;
};

constexpr SideRow PHYSICAL_SIDE[] = {
    {Names::OPERATION_DISCOVER_STORAGE_ENCLOSURES,
     Names::StorageEnclosure::ATTR_VALUE_TYPE_STORAGE_ENCLOSURE},
    {Names::OPERATION_DISCOVER_EXPANDERS, Names::Expander::ATTR_VALUE_TYPE_EXPANDER},
    {Names::OPERATION_DISCOVER_SEPS, Names::SEP::ATTR_VALUE_TYPE_SEP},
    {Names::OPERATION_DISCOVER_PHYSICAL_DRIVES, Names::PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE},
    {Names::OPERATION_DISCOVER_TAPE_DRIVES, Names::TapeDrive::ATTR_VALUE_TYPE_TAPE_DRIVE},
};

constexpr SideRow LOGICAL_SIDE = {Names::OPERATION_DISCOVER_ARRAYS, Names::Array::ATTR_VALUE_TYPE_ARRAY};

constexpr char const* LOGICAL_TYPES[] = {
    Names::Array::ATTR_VALUE_TYPE_ARRAY,
    Names::LogicalDrive::ATTR_VALUE_TYPE_LOGICAL_DRIVE,
    Names::MirrorGroup::ATTR_VALUE_TYPE_MIRROR_GROUP,
    Names::ParityGroup::ATTR_VALUE_TYPE_PARITY_GROUP,
};

bool isType(DevicePointer const& device, char const* type) {
    return device->hasAttributeAndIs(Interface::TOLKMod::Device::ATTR_NAME_TYPE, type);
}

/// Walks the controller itself and its logical side. Other devices below the controller are left as they
/// are, except that their links and write operations are renewed.
class LogicalReenumeratePredicate : public Core::Device::ReenumeratePredicate {
  public:
    explicit LogicalReenumeratePredicate(Core::Device const& controller) : m_controller(controller) {}

    bool canPerformDiscoverFor(DevicePointer device, Common::string const& operationName) const override {
        return isLogical(device) || (isController(device) && operationName == LOGICAL_SIDE.discovery);
    }
    bool canPerformReadFor(DevicePointer device, Common::string const&) const override {
        return isLogical(device) || isController(device);
    }
    bool canReenumerateChildrenFor(DevicePointer device, bool) const override {
        return isLogical(device) || isController(device);
    }
    /// On the controller it would take the physical side away, which nothing confirms here.
    bool canRemoveStaleChildrenFor(DevicePointer device) const override { return isLogical(device); }

  private:
    bool isController(DevicePointer const& device) const { return device.get() == &m_controller; }
    static bool isLogical(DevicePointer const& device) {
        for (char const* const type : LOGICAL_TYPES) {
            if (isType(device, type)) return true;
        }
        return false;
    }

    Core::Device const& m_controller;
};

/// Whoever holds a removed device learns that it is gone.
void removeChildren(Core::Device& parent, char const* type) {
    auto child = parent.beginChild();
    while (child != parent.endChild()) {
        DevicePointer const current = *child++;
        if (isType(current, type)) parent.discard(current);
    }
}

using DeviceList = Common::list<DevicePointer>;

/// Makes the children of a row anew and adds them to `made`. Without its discovery, which then made none,
/// they stay.
void rebuild(DevicePointer const& device, SideRow const& row,
             Common::shared_ptr<Core::OperationContext> const& context, DeviceList& made,
             ResultList& results) {
    auto const discovery = device->getOperation(row.discovery);
    if (!discovery) return;
    removeChildren(*device, row.type);
    discovery->SetOperationContext(context);
    results.push_back(device->perform(discovery));
    discovery->SetOperationContext(Core::Device::DefaultOperationContext());

    Core::Device::ReenumeratePredicate const everything;
    DeviceList ofRow;
    for (auto child = device->beginChild(); child != device->endChild(); ++child) {
        if (isType(*child, row.type)) ofRow.push_back(*child);
    }
    for (DevicePointer const& child : ofRow) {
        device->ReenumerateChildrenFor(child, everything, context, results);
        made.push_back(child);
    }
}

/// The steps of a reenumeration in their order, for the physical side alone. Links lead to devices of both
/// sides, and two linked devices would keep each other.
void rebuildPhysicalSide(DevicePointer const& device, ResultList& results) {
    Core::Device::ReenumeratePredicate const everything;
    Common::shared_ptr<Core::OperationContext> const context(
        new Core::OperationContext(Core::OperationContext::eTopDownReenumerate));
    DeviceList made;
    device->DeleteAssociationsFor(device, everything, results);
    for (SideRow const& row : PHYSICAL_SIDE)
        rebuild(device, row, context, made, results);
    device->CreateAssociationsFor(device, everything, results);
    context->SetReenumerateContext(Core::OperationContext::eBottomUpReenumerate);
    for (DevicePointer const& child : made)
        device->BottomUpReenumerateFor(child, everything, context, results);
    for (DevicePointer const& child : made)
        device->RegisterWriteOperationsFor(child, everything, results);
}

}  // namespace

Core::FilterReturn FilterLocalController::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    if (!device->hasAttributeAndIs(Names::ArrayController::ATTR_NAME_LOCATION,
                                   Names::ArrayController::ATTR_VALUE_LOCATION_LOCAL)) {
        verdict =
            Interface::TOLKMod::UnavailableOperationReason::ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE;
    }
    return verdict;
}

Core::OperationReturn WriteStorageReenumerate::visit(Core::Device& device) {
    Core::OperationReturn result;
    DevicePointer const self = device.getDevicePtr();
    if (!self) return Core::OperationReturn(Status::ATTR_VALUE_STATUS_FAILURE);
    Common::string const type = hasArgument(Names::Device::ATTR_NAME_REENUMERATE_TYPE)
                                    ? getArgValue(Names::Device::ATTR_NAME_REENUMERATE_TYPE)
                                    : Common::string(Names::Device::ATTR_VALUE_REENUMERATE_TYPE_DEFAULT);
    ResultList steps;
    Core::Device::ReenumerationMark const mark;
    Core::Device::ReenumeratePredicate const everything;
    if (type == Names::Device::ATTR_VALUE_REENUMERATE_TYPE_LOGICAL) {
        device.DeleteAssociationsFor(self, everything, steps);
        if (device.hasOperation(LOGICAL_SIDE.discovery)) removeChildren(device, LOGICAL_SIDE.type);
        for (Core::OperationReturn const& step : device.DoReenumerate(LogicalReenumeratePredicate(device)))
            steps.push_back(step);
        // The walk went no further than the logical side; links of all others were deleted too.
        device.CreateAssociationsFor(self, everything, steps);
    } else if (type == Names::Device::ATTR_VALUE_REENUMERATE_TYPE_PHYSICAL) {
        rebuildPhysicalSide(self, steps);
    } else if (type == Names::Device::ATTR_VALUE_REENUMERATE_TYPE_DEFAULT) {
        steps = device.DoReenumerate(everything);
    } else {
        DeviceCommandReturn::ArgumentProblem(Status::ATTR_VALUE_STATUS_ARGUMENT_INVALID,
                                             Names::Device::ATTR_NAME_REENUMERATE_TYPE, result);
        return result;
    }
    for (Core::OperationReturn const& step : steps) {
        if (!step) {
            result.Receive(Core::Attribute(Status::ATTR_NAME_STATUS, Status::ATTR_VALUE_STATUS_FAILURE));
        }
    }
    return result;
}

Common::shared_ptr<Core::Capability> WriteStorageReenumerate::getCapabilityPtr(DevicePointer) {
    Common::shared_ptr<Core::Capability> const root(new Core::Capability);
    root->Subscribe(choiceCapability(Names::Device::ATTR_NAME_REENUMERATE_TYPE,
                                     {Names::Device::ATTR_VALUE_REENUMERATE_TYPE_DEFAULT,
                                      Names::Device::ATTR_VALUE_REENUMERATE_TYPE_LOGICAL,
                                      Names::Device::ATTR_VALUE_REENUMERATE_TYPE_PHYSICAL},
                                     Names::Device::ATTR_VALUE_REENUMERATE_TYPE_DEFAULT, nullptr));
    return root;
}

}  // namespace Operations
