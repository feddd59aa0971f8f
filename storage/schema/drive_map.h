#pragma once

#include <cstdint>
#include <span>

#include "common/bitset.h"
#include "common/list.h"

namespace Schema {

/// A set of device numbers, one bit each. Numbers of size() and above are refused: they read as absent, and
/// setting one leaves a line in the log.
class DriveMap {
  public:
    /// Devices of the maps within the fixed records.
    static constexpr unsigned FIXED_DEVICES = 128;
    /// No reply is believed beyond it.
    static constexpr unsigned MOST_DEVICES = 4096;

    using NumberList = Common::list<unsigned short>;

    explicit DriveMap(unsigned devices = FIXED_DEVICES);

    /// Takes the map out of a reply to a command. For up to 128 devices (0 stands for a firmware that doesn't
    /// tell) it is the sixteen bytes at `fixedOffset`; for more it is the extended map at `extendedOffset`,
    /// both counted from the start of the reply. An extended map that doesn't lie within the reply is refused
    /// with a line in the log, and the fixed one taken, which has the first 128 devices.
    /// Firmware keeps maps in units of two, four or eight bytes, the least significant byte first: bit n is
    /// bit n % 8 of byte n / 8, whatever the unit is.
    void InitializeDriveMap(std::span<unsigned char const> reply, unsigned fixedOffset,
                            unsigned extendedOffset, unsigned devices);

    /// Whether such a map stands in what the reply tells to have, `told` bytes, but not in what came of it.
    static bool isCut(std::size_t came, unsigned extendedOffset, unsigned devices, std::size_t told);

    unsigned size() const { return m_size; }
    bool test(unsigned number) const { return number < m_size && m_bits.test(number); }
    void set(unsigned number);
    void reset(unsigned number) { m_bits.reset(number); }
    /// Forgets the numbers from `devices` on, and refuses them from here on.
    void limitTo(unsigned devices);
    unsigned count() const { return m_bits.count(); }
    bool any() const { return m_bits.any(); }
    /// All numbers of the set, ascending.
    NumberList numbers() const;

    /// Removes what the other map has.
    DriveMap& operator-=(DriveMap const& other);
    /// Adds what the other map has, and grows to its size.
    DriveMap& operator|=(DriveMap const& other);
    /// The same numbers, whatever the sizes are.
    bool operator==(DriveMap const& other) const { return m_bits == other.m_bits; }

  private:
    void read(std::span<unsigned char const> bytes, unsigned devices);

    Common::bitset<MOST_DEVICES> m_bits;
    unsigned m_size;
};

/// Physical devices by their BMIC index.
class PhysicalDriveMap : public DriveMap {
  public:
    /// Which map of an identify reply.
    enum EnIdentifyMap { ePresent, eExternal, eNonDisk };

    using DriveMap::DriveMap;
    using DriveMap::InitializeDriveMap;
    /// Takes a map out of the whole reply to the controller's identify command, members in wire order.
    void InitializeDriveMap(EnIdentifyMap which, std::span<unsigned char const> identifyReply);
    using DriveMap::isCut;
    static bool isCut(EnIdentifyMap which, std::span<unsigned char const> identifyReply);
};

/// Logical drives by their number.
class LogicalDriveMap : public DriveMap {
  public:
    static constexpr unsigned SMALL_CONTROLLER_DRIVES = 32;

    explicit LogicalDriveMap(unsigned drives = SMALL_CONTROLLER_DRIVES) : DriveMap(drives) {}
};

}  // namespace Schema
