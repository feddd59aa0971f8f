#pragma once

#include <cstdint>

#include "common/compound_list.h"
#include "common/map.h"
#include "core/named_operation.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Says which controllers discovery may bring into the tree: those on a list, or those not on it. Holds for
/// later discoveries until it is performed again. At the start every controller is allowed.
class WriteAllowedControllerDiscovery
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_WRITE_ALLOWED_CONTROLLER_DISCOVERY,
                                  Core::DeviceOperation::eWrite, Core::NullFilter, Schema::VisitorModRoot> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ModRoot& root) override;
    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;

    /// Whether a controller of this name may be discovered.
    static bool isControllerEnabled(Common::string const& name);
    /// Name constant for the decimal text of a subsystem identifier; empty for an unknown one.
    static Common::string controllerIDTostring(Common::string const& identifier);
    /// Firmware family constant for a name constant; empty for an unknown one.
    static Common::string controllerNameToFamilyString(Common::string const& name);
    /// Bus type constant for a bus type number; empty for an unknown one.
    static Common::string busTypeToString(std::uint32_t busType);
    static constexpr std::uint32_t BUS_TYPE_PCI = 5;

  private:
    static Common::string& s_maskType();
    static Common::CompoundList& s_controllerMaskList();
    static Common::map<Common::string, Common::string>& s_ControllerIDToName();
    static Common::map<Common::string, Common::string>& s_ControllerNameToFamily();
    static Common::map<std::uint32_t, Common::string>& s_dwBusTypeToStr();
    static void fillTables();
};

}  // namespace Operations
