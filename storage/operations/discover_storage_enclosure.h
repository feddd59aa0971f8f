#pragma once

#include <vector>

#include "core/named_operation.h"
#include "storage/operations/bus_parameters.h"
#include "storage/operations/csmi_enclosures.h"
#include "storage/operations/filter_controller_status.h"
#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Makes a device of each box behind a controller or a SAS adapter. A box under two places of a controller,
/// known by its serial number, is one device with two paths. Positions that don't answer are no failure.
class DiscoverStorageEnclosure
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_STORAGE_ENCLOSURES,
                                  Core::DeviceOperation::eDiscovery,
                                  FilterControllerStatusNoEncryptionLockoutCheck,
                                  Schema::VisitorArrayController, Schema::VisitorHostBusAdapter> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    Core::OperationReturn visit(Schema::HostBusAdapter& adapter) override;
    Core::OperationReturn visit(Core::Device& device, ConcreteBMICDevice& controller);

  private:
    struct Found {
        Schema::StorageEnclosure* enclosure;
        Common::shared_ptr<Core::Device> pointer;  ///< the same device, held
    };
    using EnclosureList = std::vector<Found>;

    static void discover(Box const& box, EnclosureList& found);
    static void ProcessCSMIEnclosure(Schema::HostBusAdapter& adapter, CsmiEnclosure const& box);
    static void publishMarketingName(Common::shared_ptr<Core::Device> const& enclosure);
};

}  // namespace Operations
