#pragma once

#include "common/cloneable.h"
#include "common/local_static_allocator.h"
#include "core/device_composite.h"
#include "core/operation_registry.h"
#include "storage/schema/visitors.h"

namespace Schema {

/// The root of the tree, without hardware behind it. Its identifier is "MR:" and a running number. It holds
/// the pointer to itself: it has no parent that could.
class ModRoot
    : public Common::CloneableInherit<Core::DeviceComposite, Common::shared_ptr<Core::Device>, ModRoot>,
      public Core::DeviceOperationRegistry<ModRoot>,
      public Common::LocalStaticAllocator<ModRoot, 1> {
  public:
    ModRoot();
    /// A copy doesn't own itself before it is told so, see setDevicePtr.
    ModRoot(ModRoot const& other);

    Common::shared_ptr<Core::Device> getDevicePtr() const override { return m_self; }
    bool operator==(Core::Device const& other) const override;

  protected:
    Core::OperationReturn performImpl(Core::VisitorDevice& visitor) override;
    Common::string toStringImpl() const override { return m_identifier; }
    void setDevicePtr(Common::shared_ptr<Core::Device> const& self) override { m_self = self; }

  private:
    Common::string m_identifier;
    Common::shared_ptr<Core::Device> m_self;
};

}  // namespace Schema
