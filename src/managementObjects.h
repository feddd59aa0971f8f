#pragma once

#include <string>

/// A controller, as the management object stack knows it. Null is none.
typedef void* HMGMTOBJECT;

/// The way to a controller's NVRAM through the management object stack. Statuses are the stack's own: 0 is
/// success.
class NvramAccess {
  public:
    virtual ~NvramAccess() = default;
    /// The controller of this serial number, or null. The handle stays open to the end of the process.
    virtual HMGMTOBJECT open(std::string const& serial) = 0;
    /// The controller's serial number; empty when it can't be told.
    virtual std::string serialNumber(HMGMTOBJECT controller) = 0;
    /// Reads the boot strap byte at offset 2045. `value` stays as it is when nothing was read.
    virtual int read(HMGMTOBJECT controller, unsigned char& value) = 0;
    virtual int write(HMGMTOBJECT controller, unsigned char value, unsigned short offset) = 0;
};

/// Provided by the management object stack, which keeps ownership. Null while there is none: then no
/// controller can be reached.
extern NvramAccess* gblNvramAccess;

/// The controller of this serial number, or null, also when the management objects can't be opened at all.
HMGMTOBJECT getHandle(std::string const& serial);

/// The rest works on a handle from getHandle() and returns what NvramAccess says; -1, or an empty text, for a
/// null handle.
std::string SenseSubsystemInformation(HMGMTOBJECT controller);
int ReadNVRAMBootStrap(HMGMTOBJECT controller, unsigned char& value);
int writeNVRAMBootStrap(HMGMTOBJECT controller, unsigned char value, unsigned short offset);
