#pragma once

namespace Interface::StorageMod {

/// What the library may do beyond the ordinary, for the whole process. All off at the start; set by
/// OPERATION_WRITE_SET_CAPABILITY_MASK, and kept until it sets them again.
class GlobalCapabilityMaskClass {
  public:
    bool m_EnableExperimental = false;
    bool m_EnableRDXMasking = false;
    bool m_EnableGenericControllerSupport = false;
    bool m_EnableOfflineSupport = false;
    bool m_EnableAcousticDebug = false;
    bool m_EnableTarnDebug = false;
    bool m_EnableMLTScripting = false;
    bool m_EnableMLTScriptingSplitJoin = false;
    bool m_EnableAnySEPFlash = false;
};

/// The one mask of the process.
GlobalCapabilityMaskClass& globalCapabilityMask();

}  // namespace Interface::StorageMod
