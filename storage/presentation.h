#pragma once

#include "common/shared_ptr.h"
#include "common/string.h"
#include "core/device.h"

/// What people read, made of attributes.
namespace StoragePres::PhysicalDrive {

/// Where to find a drive: "Port 1I, Box 2, Bay 3", of these what its attributes tell. Empty when they tell
/// nothing, and for a null device.
Common::string locationHintFor(Common::shared_ptr<Core::Device> device);

/// The size that a drive is sold by, of its block count in decimal units: whole gigabytes, "300 GB", and from
/// 1,000 of them terabytes in tenths, "1.2 TB". Blocks are of ATTR_NAME_BLOCK_SIZE bytes, or 512. Empty
/// without a block count.
Common::string marketingBlocksFor(Core::Device& device);

}  // namespace StoragePres::PhysicalDrive
