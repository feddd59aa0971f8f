#include "storage/operations/write_allowed_controller_discovery.h"

#include "core/tolkmod.h"
#include "storage/controller_models.h"
#include "storage/operations/publish.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/mod_root.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod;
namespace Cap = Interface::TOLKMod::Capability;
using Texts = Common::map<Common::string, Common::string>;
using Text = Common::pair<Common::string, Common::string>;

Common::string textFor(Texts const& map, Common::string const& key) {
    auto const entry = map.find(key);
    return entry != map.end() ? (*entry).second : Common::string();
}

}  // namespace

Common::string& WriteAllowedControllerDiscovery::s_maskType() {
    static Common::string maskType(Names::ModRoot::ATTR_VALUE_MASK_TYPE_DISABLED);
    return maskType;
}

Common::CompoundList& WriteAllowedControllerDiscovery::s_controllerMaskList() {
    static Common::CompoundList list(false);
    return list;
}

Texts& WriteAllowedControllerDiscovery::s_ControllerIDToName() {
    static Texts map;
    return map;
}

Texts& WriteAllowedControllerDiscovery::s_ControllerNameToFamily() {
    static Texts map;
    return map;
}

Common::map<std::uint32_t, Common::string>& WriteAllowedControllerDiscovery::s_dwBusTypeToStr() {
    static Common::map<std::uint32_t, Common::string> map;
    return map;
}

void WriteAllowedControllerDiscovery::fillTables() {
    if (!s_ControllerIDToName().empty()) {
        return;
    }
    s_dwBusTypeToStr().insert({BUS_TYPE_PCI, Names::ArrayController::ATTR_VALUE_BUS_TYPE_PCI});
    for (auto const& row : Names::controllerModels()) {
        for (std::uint32_t const identifier : row.identifiers) {
            if (identifier != 0) {
                s_ControllerIDToName().insert(Text(decimalText(identifier), row.nameConstant));
            }
        }
        s_ControllerNameToFamily().insert(Text(row.nameConstant, row.family));
    }
    s_ControllerNameToFamily().insert(
        Text(Names::ArrayController::ATTR_VALUE_CONTROLLER_NAME_GENERIC,
             Names::ArrayController::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_UNKNOWN));
}

Core::OperationReturn WriteAllowedControllerDiscovery::visit(Schema::ModRoot&) {
    s_maskType() = getArgValue(Names::ModRoot::ATTR_NAME_MASK_TYPE);
    s_controllerMaskList().Clear();
    for (auto argument = beginArgument(); argument != endArgument(); ++argument) {
        if ((*argument).second.first == Names::ArrayController::ATTR_NAME_CONTROLLER_NAME) {
            s_controllerMaskList().Add((*argument).second.second);
        }
    }
    return Core::OperationReturn();
}

Common::shared_ptr<Core::Capability> WriteAllowedControllerDiscovery::getCapabilityPtr(
    Common::shared_ptr<Core::Device>) {
    Common::shared_ptr<Core::Capability> const root(new Core::Capability);
    Common::shared_ptr<Core::Capability> const maskType(
        new Core::CapabilityClass(Names::ModRoot::ATTR_NAME_MASK_TYPE, Cap::ATTR_VALUE_INSTANCE_TYPE_STRING,
                                  Cap::ATTR_VALUE_CARDINALITY_SINGLE, Cap::ATTR_VALUE_ACTION_ABSOLUTE,
                                  Cap::ATTR_VALUE_INSTANCE_RANGE_CLOSED));
    for (char const* value :
         {Names::ModRoot::ATTR_VALUE_MASK_TYPE_ENABLED, Names::ModRoot::ATTR_VALUE_MASK_TYPE_DISABLED}) {
        maskType->Subscribe(Common::shared_ptr<Core::Capability>(
            new Core::CapabilityInstance(value, false, s_maskType() == value)));
    }
    root->Subscribe(maskType);
    root->Subscribe(Common::shared_ptr<Core::Capability>(
        new Core::CapabilityClass(Names::ArrayController::ATTR_NAME_CONTROLLER_NAME,
                                  Cap::ATTR_VALUE_INSTANCE_TYPE_STRING, Cap::ATTR_VALUE_CARDINALITY_MULTIPLE,
                                  Cap::ATTR_VALUE_ACTION_ABSOLUTE, Cap::ATTR_VALUE_INSTANCE_RANGE_OPEN)));
    return root;
}

bool WriteAllowedControllerDiscovery::isControllerEnabled(Common::string const& name) {
    if (s_maskType() == Names::ModRoot::ATTR_VALUE_MASK_TYPE_ENABLED) {
        return s_controllerMaskList().contains(name);
    }
    if (s_maskType() == Names::ModRoot::ATTR_VALUE_MASK_TYPE_DISABLED) {
        return !s_controllerMaskList().contains(name);
    }
    return false;
}

Common::string WriteAllowedControllerDiscovery::controllerIDTostring(Common::string const& identifier) {
    fillTables();
    return textFor(s_ControllerIDToName(), identifier);
}

Common::string WriteAllowedControllerDiscovery::busTypeToString(std::uint32_t busType) {
    fillTables();
    auto const entry = s_dwBusTypeToStr().find(busType);
    return entry != s_dwBusTypeToStr().end() ? (*entry).second : Common::string();
}

Common::string WriteAllowedControllerDiscovery::controllerNameToFamilyString(Common::string const& name) {
    controllerIDTostring("");
    return textFor(s_ControllerNameToFamily(), name);
}

}  // namespace Operations
