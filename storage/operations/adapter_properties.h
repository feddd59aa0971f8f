#pragma once

#include <cstdint>

#include "common/list.h"
#include "common/string.h"
#include "sysmod/device_handle.h"

namespace Operations {

/// What adapter discovery says of one adapter, taken out of its handle.
struct AdapterProperties {
    explicit AdapterProperties(Common::string const& handle);

    Common::string handle;
    Common::string status;  ///< "OK", "FAILED", ...
    Common::string kind;    ///< "ARRAY_CONTROLLER", "CSMI_HBA" or "DUMB_HBA"
    Common::string driverName;
    Common::string driverVersion;
    Common::string fastPath;        ///< "NO", "YES:ENABLED" or "YES:DISABLED"
    Common::string subsystemIdHex;  ///< eight hexadecimal digits, vendor first
    Common::string deviceIdHex;
    Common::string domain;  ///< upper-case hexadecimal; "FFFF" when not known
    Common::string bus;     ///< "FF" when not known, as the next two
    Common::string device;
    Common::string function;
    Common::string slot;  ///< empty when not known
    Common::string firmwareVersion;
    Common::string romVersion;
    Common::string serialNumber;  ///< empty when not told

    /// Domain, bus, device and function are all known.
    bool hasPciLocation() const;
};

/// The kind of an adapter that answers CSMI.
inline constexpr char CSMI_ADAPTER[] = "CSMI_HBA";

/// What stands for a PCI field that isn't known.
inline constexpr char UNKNOWN_PCI_DOMAIN[] = "FFFF";
inline constexpr char UNKNOWN_PCI_FIELD[] = "FF";

/// The number behind hexadecimal text, as decimal text; empty for text that isn't such a number.
Common::string decimalOfHex(Common::string const& digits);

/// Whether the adapter of the first handle comes first: by slot number, adapters without one last, so that
/// the tree's order doesn't depend on the driver's.
bool slotSortPredicate(Common::string const& left, Common::string const& right);

/// The adapters of the machine, one handle each.
class StorageAdapterIterator {
  public:
    using List = Common::list<Common::string>;

    StorageAdapterIterator();

    List const& controllers() const { return m_controllers; }
    List const& csmiAdapters() const { return m_csmiAdapters; }
    List const& plainAdapters() const { return m_plainAdapters; }
    /// The controllers in the order of slotSortPredicate; equal slots keep their order.
    List controllersBySlot() const;

  private:
    List m_controllers;
    List m_csmiAdapters;
    List m_plainAdapters;
};

}  // namespace Operations
