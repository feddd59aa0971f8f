#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "infomgr/os_interface.h"

/// What a device class is built from: its type, its object types, and how their devices are found.
class ClassDiscoverer {
  public:
    /// `system` is borrowed, and lives to the end of the process.
    ClassDiscoverer(std::uint32_t classType, std::vector<std::uint32_t> objectTypes,
                    OperatingSystem::OsInterface& system)
        : m_classType(classType), m_objectTypes(std::move(objectTypes)), m_system(&system) {}

    std::uint32_t classType() const { return m_classType; }
    std::vector<std::uint32_t> const& objectTypes() const { return m_objectTypes; }
    OperatingSystem::DeviceList discover(std::uint32_t objectType) const {
        return m_system->findDevices(objectType);
    }

  private:
    std::uint32_t m_classType;
    std::vector<std::uint32_t> m_objectTypes;
    OperatingSystem::OsInterface* m_system;
};
