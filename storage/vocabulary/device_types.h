#pragma once

#include "core/constant_text.h"
#include "storage/vocabulary/array_controller.h"

/// The types of the devices below the root. The array controller's stands with its other constants.
namespace Interface::StorageMod {

namespace FailedArrayController {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_FAILED_ARRAY_CONTROLLER);
}
namespace ExternalArrayController {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_EXTERNAL_ARRAY_CONTROLLER);
}
namespace PairedController {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_PAIRED_CONTROLLER);
}
namespace HostBusAdapter {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_HBA);
}
namespace StorageEnclosure {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_STORAGE_ENCLOSURE);
}
namespace DriveCage {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_DRIVE_CAGE);
}
namespace SEP {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_SEP);
}
namespace Expander {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_EXPANDER);
}
namespace Phy {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_PHY);
}
namespace PhysicalDrive {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_PHYSICAL_DRIVE);
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_NON_VAULTLINE_PHYSICAL_DRIVE);
}  // namespace PhysicalDrive
namespace TapeDrive {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_TAPE_DRIVE);
}
namespace Array {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_ARRAY);
}
namespace LogicalDrive {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_LOGICAL_DRIVE);
}
namespace MirrorGroup {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_MIRROR_GROUP);
}
namespace ParityGroup {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_PARITY_GROUP);
}
namespace StorageVolume {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_STORAGE_VOLUME);
}
namespace DiskExtent {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_DISK_EXTENT);
}
namespace RemoteVolume {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_REMOTE_VOLUME);
}
namespace CachingManager {
KSL_TEXT_CONSTANT(ATTR_VALUE_TYPE_CACHING_MANAGER);
}

}  // namespace Interface::StorageMod
