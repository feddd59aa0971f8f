#pragma once

#include "core/device.h"

namespace Core {

// A device that can have children. Its children outlive it only while somebody else holds them, and have no
// parent from then on.
class DeviceComposite : public Device {
  public:
    ~DeviceComposite() override;

    ChildIterator beginChild() const override;
    ChildIterator endChild() const override;

  protected:
    DeviceComposite() = default;
    // Leaves the children behind: clone() brings copies of them.
    DeviceComposite(DeviceComposite const& other);

    bool addChildImpl(Common::shared_ptr<Device> child) override;
    // endChild() when it isn't listed.
    ChildIterator removeChildImpl(Common::shared_ptr<Device> child) override;

  private:
    DeviceList m_children;
};

}  // namespace Core
