#pragma once

#include "command/concrete_devices.h"
#include "storage/schema/node.h"

// Block devices of the machine as the operating system shows them.

namespace Schema {

/// A block device. Its identity is the access name, its device node; without one the identifier.
class StorageVolume : public Node<StorageVolume, Core::DeviceComposite, 129, ConcreteSCSIDevice> {
  public:
    StorageVolume(Common::string const& identifier, Common::string const& model,
                  Common::string const& serialNumber, Common::string const& accessName);

  protected:
    Common::string toStringImpl() const override { return "SV:" + m_key; }

  private:
    Common::string m_key;
};

/// A part of a volume; offset and size are in blocks of 512 bytes.
class DiskExtent : public Node<DiskExtent, Core::DeviceComposite, 1> {
  public:
    DiskExtent(unsigned number, unsigned long long offset, unsigned long long size,
               Common::string const& mountPoint);

  protected:
    Common::string toStringImpl() const override { return "DE:" + decimalText(m_number); }

  private:
    unsigned m_number;
};

}  // namespace Schema
