#pragma once

/// The flat interface of the management objects: a root, an object per device class, an object per device,
/// all named by handles. Every function may be called from any thread at any time, also with a handle whose
/// object another thread is just giving up: an object lives as long as a call into it.

#include <cstdint>

/// Names a management object. Null stands for the root. A handle is good for as long as its object is there;
/// one that isn't is refused by every function, and never followed.
typedef void* HMGMTOBJECT;

namespace InfoMgr {

/// Status words. A negative one means that nothing was done.
inline constexpr int SUCCESS = 0;
inline constexpr int TOO_SHORT = 1;  ///< a request or buffer below the function's minimum
inline constexpr int NO_MORE = 3;    ///< enumeration index behind the last object
inline constexpr int NO_ROOT = static_cast<int>(0x80000003);
inline constexpr int NOT_OFFERED = static_cast<int>(0x80000004);  ///< unknown type, or function not offered
inline constexpr int NO_OBJECT = static_cast<int>(0x80000008);    ///< the handle names no live object
/// Status that an enumeration gives with the handle of a device that doesn't answer. Positive, so that a
/// caller goes on to the next index.
inline constexpr int DEVICE_FAILED = 2;
/// The request didn't reach its device, or the device refused it; the log says which.
inline constexpr int REQUEST_FAILED = static_cast<int>(0x80000005);
/// A null pointer where there must be one, or a length that can't be.
inline constexpr int BAD_ARGUMENT = static_cast<int>(0x80000006);

/// Object types. RESCAN may be added to any of them; the rest of the word is the type proper.
inline constexpr std::uint32_t RESCAN = 0x4000;
inline constexpr std::uint32_t STORAGE_CLASS = 2;          ///< device class of the adapters
inline constexpr std::uint32_t ARRAY_CONTROLLER = 0x8000;  ///< in STORAGE_CLASS
inline constexpr std::uint32_t SAS_ADAPTER = 0x8001;       ///< in STORAGE_CLASS

/// Functions of InfoMgrControlObject; their records are in request_records.h.
inline constexpr std::uint32_t BMIC_FUNCTION = 0x8001;
inline constexpr std::uint32_t SCSI_FUNCTION = 0x8002;
inline constexpr std::uint32_t CLASS_FUNCTION = 0x8003;  ///< of the root alone
inline constexpr std::uint32_t CSMI_FUNCTION = 0x8004;
inline constexpr std::uint32_t PASSTHRU_FUNCTION = 0x8005;

/// Kinds of InfoMgrControlObject. A pass-through record tells its direction itself.
inline constexpr std::uint32_t READ_KIND = 1;
inline constexpr std::uint32_t WRITE_KIND = 2;

/// Kinds of InfoMgrGetObjectInfo, of an object that stands for a device.
inline constexpr std::uint32_t NODE_INFO = 1;      ///< path of its node, ended by a zero byte
inline constexpr std::uint32_t IDENTITY_INFO = 2;  ///< unique key of the adapter, ended by a zero byte

}  // namespace InfoMgr

/// At the root: the object of the device class `type`. With RESCAN the class discovers anew at its next
/// enumerations. `*result` is null when there is no such class. Opening costs nothing and needs no closing.
int InfoMgrOpenObject(HMGMTOBJECT handle, std::uint32_t type, HMGMTOBJECT* result, void* reserved1,
                      void* reserved2);
/// Changes nothing: the tree owns its objects.
int InfoMgrCloseObject(HMGMTOBJECT handle);
/// At a device class: the object at `index` of the objects of `type`. The first enumeration of a type looks
/// for its devices. With RESCAN a device that was found before is asked again whether it answers. The status
/// is the object's own: other than 0 and not negative means that its device isn't fit for use; the handle is
/// good all the same.
int InfoMgrEnumObject(HMGMTOBJECT handle, std::uint32_t type, std::uint32_t index, HMGMTOBJECT* result,
                      void* reserved1, void* reserved2);
/// Information by kind. TOO_SHORT, and nothing written, when it doesn't fit.
int InfoMgrGetObjectInfo(HMGMTOBJECT handle, std::uint32_t kind, void* buffer, std::uint32_t length);
int InfoMgrSetObjectInfo(HMGMTOBJECT handle, std::uint32_t kind, void const* buffer, std::uint32_t length);
/// Carries a request record to the object's device and brings its outcome back in the record. `length` is
/// the record's documented length (request_records.h); below the function's minimum nothing is sent.
/// `resultLength` receives the length and may be null.
int InfoMgrControlObject(HMGMTOBJECT handle, std::uint32_t function, std::uint32_t kind, void* request,
                         std::uint32_t length, std::uint32_t* resultLength, void* reserved);
int InfoMgrLockObject(HMGMTOBJECT handle);
int InfoMgrUnlockObject(HMGMTOBJECT handle);
int InfoMgrRegisterObject(HMGMTOBJECT handle);
int InfoMgrUnregisterObject(HMGMTOBJECT handle);

/// SUCCESS if there is a root, else NO_ROOT.
int InfoMgrInitStatus();
/// Writes the versions of the interface and of its implementation, "1.0-0.1.0". 1, or 0 and nothing written
/// when there is no version or it doesn't fit `length` bytes.
int InfoMgrGetVersion(char* text, std::uint32_t length);
/// There are no options: always NOT_OFFERED.
int InfoMgrOption();
