#pragma once

#include <cstdint>

#include "command/concrete_devices.h"
#include "command/records/all_records.h"
#include "common/cloneable.h"
#include "common/copy_ptr.h"
#include "common/local_static_allocator.h"
#include "core/device_composite.h"
#include "core/operation_registry.h"
#include "storage/schema/visitors.h"

namespace Schema {

/// An array controller. Its identifier is "AC:" and the location key, which holds across discoveries.
class ArrayController : public Common::CloneableInherit<Core::DeviceComposite,
                                                        Common::shared_ptr<Core::Device>, ArrayController>,
                        public ConcreteBMICDevice,
                        public ConcreteSCSIDevice,
                        public Core::DeviceOperationRegistry<ArrayController>,
                        public Common::LocalStaticAllocator<ArrayController, 3> {
  public:
    ArrayController(Common::string const& handle, bool const& isRemote,
                    unsigned short const& maxPhysicalUnits, unsigned short const& maxLogicalUnits,
                    Common::string const& locationKey);

    /// Keeps what the device needs of an identify reply: the limits of its units.
    void InitializeSupport(Common::copy_ptr<Records::IDENTIFY_CONTROLLER> const& identify);

    /// Turns the status down: not OK, with the state that tells why. The later call overrides the earlier.
    void SetControllerStatusNotOk(Common::string const& state);

    /// Takes over the limits and the handle of a newly discovered twin.
    void UpdateWith(Common::shared_ptr<Core::Device> other) override;

    bool operator==(Core::Device const& other) const override;

    unsigned short maxLogicalUnits() const override { return m_maxLogicalUnits; }
    unsigned short maxPhysicalUnits() const override { return m_maxPhysicalUnits; }

    /// More physical devices than the 128 of the fixed maps: the maps stand behind the fixed record.
    bool extendedDrivemapSupport() const;
    /// No more than the 32 physical devices of the oldest maps.
    bool smallDrivemapSupport() const;

  protected:
    Core::OperationReturn performImpl(Core::VisitorDevice& visitor) override;
    Common::string toStringImpl() const override;

  private:
    Common::string m_locationKey;
    unsigned short m_maxPhysicalUnits;
    unsigned short m_maxLogicalUnits;
};

}  // namespace Schema
