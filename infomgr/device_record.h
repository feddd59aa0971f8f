#pragma once

#include <cstdint>
#include <set>

/// Which object types of a device class have been discovered.
class DeviceRecord {
  public:
    bool getMarkFor(std::uint32_t type) const { return m_marked.count(type) != 0; }
    void Mark(std::uint32_t type, bool discovered) {
        if (discovered) {
            m_marked.insert(type);
        } else {
            m_marked.erase(type);
        }
    }
    std::uint32_t marks() const { return static_cast<std::uint32_t>(m_marked.size()); }
    void clear() { m_marked.clear(); }

  private:
    std::set<std::uint32_t> m_marked;
};
