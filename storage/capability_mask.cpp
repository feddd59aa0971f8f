#include "storage/capability_mask.h"

namespace Interface::StorageMod {

GlobalCapabilityMaskClass& globalCapabilityMask() {
    static GlobalCapabilityMaskClass mask;
    return mask;
}

}  // namespace Interface::StorageMod
