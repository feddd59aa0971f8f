#pragma once

#include <cstdint>
#include <vector>

#include "command/concrete_devices.h"
#include "sysmod/device_handle.h"

namespace Operations {

/// A list of device handles that is walked like a range.
class HandleRange {
  public:
    using Handles = std::vector<Common::string>;
    using const_iterator = Handles::const_iterator;

    const_iterator begin() const { return m_handles.begin(); }
    const_iterator end() const { return m_handles.end(); }
    std::size_t size() const { return m_handles.size(); }

  protected:
    HandleRange() = default;
    /// The handle whose index is this; end() when none is. Handles that tell no index are never found.
    const_iterator findIndex(unsigned short index) const;

    Handles m_handles;
};

/// The physical devices behind an adapter, as they are when it is made: those that the host may address and
/// those that are hidden from it, each once, by index (devices without one last, in order of address). Reads
/// go through the reply cache (command/cache.h). An adapter that doesn't answer has none.
///
///     PhysicalDeviceIterator devices(controller);
///     for (auto at = devices.begin(SEP_TYPE); at != devices.end(SEP_TYPE); ++at) use(at->c_str());
class PhysicalDeviceIterator : public HandleRange {
  public:
    /// Device types of the report, codes of Core::SysMod::EnDeviceType.
    static constexpr unsigned char DRIVE_TYPE = 0;
    static constexpr unsigned char TAPE_TYPE = 1;
    static constexpr unsigned char EXPANDER_TYPE = 5;
    static constexpr unsigned char SEP_TYPE = 6;

    explicit PhysicalDeviceIterator(ConcreteSCSIDevice const& adapter);

    using HandleRange::begin;
    using HandleRange::end;
    using HandleRange::size;
    /// Those of one device type, which stand together.
    const_iterator begin(unsigned char type) const;
    const_iterator end(unsigned char type) const;
    std::size_t size(unsigned char type) const;
    /// By BMIC index; end() without it.
    const_iterator find(unsigned short bmicIndex) const { return findIndex(bmicIndex); }
    /// The same among those of a type; end(type) without it.
    const_iterator find(unsigned short bmicIndex, unsigned char type) const;

    /// What a handle of the list tells: see the functions of the same names in sysmod/device_handle.h. The
    /// SAS address is sixteen hexadecimal digits, empty where the adapter doesn't tell it.
    static unsigned char getDeviceType(Common::string const& handle);
    static Common::string getSasAddress(Common::string const& handle);
    /// False, and eight zero bytes, where the adapter doesn't tell it.
    static bool getSasAddress(Common::string const& handle, unsigned char* bytes);
    static Common::string getParentSasAddress(Common::string const& handle);
    static unsigned char getPhyIdentifier(Common::string const& handle);
    static unsigned char getParentPhyIdentifier(Common::string const& handle);

    /// The handle of the adapter's device of this index and type; empty without one.
    static Common::string GetDeviceInfo(ConcreteSCSIDevice const& adapter, unsigned short bmicIndex,
                                        unsigned char type);

  private:
    void BuildCombinedDeviceList(Common::string const& adapterHandle);

    Handles m_byType[256];
};

/// The same for logical units; an index is a volume's number.
class LogicalDeviceIterator : public HandleRange {
  public:
    explicit LogicalDeviceIterator(ConcreteSCSIDevice const& adapter);

    const_iterator find(unsigned short number) const { return findInternal(number); }

  private:
    const_iterator findInternal(unsigned short number) const { return findIndex(number); }
};

}  // namespace Operations
