#pragma once

#include "command/concrete_devices.h"
#include "storage/schema/forward_device.h"
#include "storage/schema/node.h"

namespace Schema {

/// Stands for "the controller has no index for it".
inline constexpr unsigned short NO_BMIC_INDEX = 0xFFFF;

/// An enclosure processor. Its identifier is "SEP:" and its address; where the handle is its adapter's, or
/// shared with others, the device number tells it from its siblings: publish ATTR_NAME_DEVICE_NUMBER before
/// offering the device to a parent.
class SEP
    : public Node<SEP, Core::DeviceComposite, 1, ForwardDevice, ConcreteSCSIDevice, ConcreteCSMIDevice> {
  public:
    explicit SEP(Common::string const& handle);

    /// Its index among the controller's devices: ATTR_NAME_DEVICE_NUMBER, or without one the handle's.
    unsigned short bmicIndex() const;
    /// Its kind makes zones of the drives behind it, for the controllers that ask it to.
    bool SupportSEPZoning() const;
    /// Its kind has zones that are set once, and hold until set anew.
    bool SupportsStaticZoningModes() const;

    /// ATTR_VALUE_SEP_TYPE_... for a type code of a controller's bus parameters; _UNKNOWN for any other.
    static Common::string sepType(unsigned char const& code);

  protected:
    Common::string toStringImpl() const override;
};

/// A SAS expander. Identity and index as those of a SEP.
class Expander : public Node<Expander, Core::DeviceComposite, 1, ForwardDevice, ConcreteSCSIDevice> {
  public:
    explicit Expander(Common::string const& handle);

    unsigned short bmicIndex() const;

  protected:
    Common::string toStringImpl() const override;
};

/// One phy of a SAS device.
class Phy : public Node<Phy, Core::Device, 1, ForwardDevice> {
  public:
    explicit Phy(unsigned short number);

  protected:
    Common::string toStringImpl() const override { return "PHY:" + decimalText(m_number); }

  private:
    unsigned short m_number;
};

}  // namespace Schema
