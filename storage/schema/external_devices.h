#pragma once

#include "storage/schema/node.h"

// What a controller or the root knows of beyond its own drives. No commands go to these devices.

namespace Schema {

/// An array controller in an external enclosure, as the controller that it hangs on sees it. `wwid` is its
/// world wide identifier and its identity.
class ExternalArrayController : public Node<ExternalArrayController, Core::DeviceComposite, 3> {
  public:
    explicit ExternalArrayController(Common::string const& wwid);

  protected:
    Common::string toStringImpl() const override { return "EAC:" + m_wwid; }

  private:
    Common::string m_wwid;
};

/// The other controller of a redundant pair.
class PairedController : public Node<PairedController, Core::DeviceComposite, 33> {
  public:
    PairedController();

  protected:
    Common::string toStringImpl() const override { return m_identifier; }

  private:
    Common::string m_identifier;
};

/// A volume of an external array controller.
class RemoteVolume : public Node<RemoteVolume, Core::DeviceComposite, 3> {
  public:
    RemoteVolume();

  protected:
    Common::string toStringImpl() const override { return m_identifier; }

  private:
    Common::string m_identifier;
};

/// Software of the host that caches volumes on solid-state drives: its name, and its version.
class CachingManager : public Node<CachingManager, Core::DeviceComposite, 3> {
  public:
    CachingManager(Common::string const& name, Common::string const& version);

  protected:
    Common::string toStringImpl() const override { return "CM:" + m_name; }

  private:
    Common::string m_name;
};

}  // namespace Schema
