#include "storage/schema/volumes.h"

#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/disk_extent_names.h"
#include "storage/vocabulary/storage_volume.h"
#include "sysmod/device_handle.h"

namespace Schema {
namespace {

namespace Volume = Interface::StorageMod::StorageVolume;
namespace Extent = Interface::StorageMod::DiskExtent;

/// Commands to a volume go to its node.
Common::string handleOf(Common::string const& accessName) {
    Core::SysMod::PropertyTable table;
    table[Core::SysMod::NodePath] = accessName;
    return Core::SysMod::toDeviceInfo(table);
}

}  // namespace

StorageVolume::StorageVolume(Common::string const& identifier, Common::string const& model,
                             Common::string const& serialNumber, Common::string const& accessName)
    : Node(Volume::ATTR_VALUE_TYPE_STORAGE_VOLUME, ConcreteSCSIDevice(handleOf(accessName))),
      m_key(accessName.empty() ? identifier : accessName) {
    publish(*this, Volume::ATTR_NAME_VOLUME_UNIQUE_IDENTIFIER, identifier);
    publish(*this, Volume::ATTR_NAME_VOLUME_MODEL, model);
    publish(*this, Volume::ATTR_NAME_VOLUME_SERIAL_NUMBER, serialNumber);
    publish(*this, Volume::ATTR_NAME_DRIVE_ACCESS_NAME, accessName);
}

DiskExtent::DiskExtent(unsigned number, unsigned long long offset, unsigned long long size,
                       Common::string const& mountPoint)
    : Node(Extent::ATTR_VALUE_TYPE_DISK_EXTENT), m_number(number) {
    publish(*this, Extent::ATTR_NAME_DISK_EXTENT_NUMBER, decimalText(number));
    publish(*this, Extent::ATTR_NAME_DISK_EXTENT_OFFSET, decimalText(offset));
    publish(*this, Extent::ATTR_NAME_DISK_EXTENT_SIZE, decimalText(size));
    publish(*this, Extent::ATTR_NAME_DISK_EXTENT_MOUNT_POINT, mountPoint);
}

}  // namespace Schema
