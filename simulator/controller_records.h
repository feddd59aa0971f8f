#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "simulator/controller_units.h"
#include "simulator/device.h"
#include "simulator/fields.h"

namespace simulator {

/// The replies of a controller's sense commands: sensible contents, then what the scenario sets by name.
class ControllerRecords {
  public:
    struct Facts {
        std::string product;
        std::string serial;
        std::string slot;
        std::uint32_t boardId = 0;
        std::uint64_t worldWideName = 0;
    };
    struct FirmwareVersions {
        std::string running;
        std::string active;
        std::string inactive;
    };

    /// Reads a device's record keys ("identify", "subsystem", ...). Throws ScenarioError.
    ControllerRecords(Object const& device, Facts facts);

    /// `units` is null for a controller with nothing behind it.
    Bytes identifyController(FirmwareVersions const& versions, ControllerUnits const* units) const;
    Bytes subsystem() const;
    Bytes controllerParameters() const;
    Bytes redundantParameters() const;
    /// `unit` 0 or 1: the controller's page or the cache module's; `moduleVersion` is that of its firmware, 0
    /// without any.
    Bytes cacheConfiguration(unsigned unit, unsigned moduleVersion) const;
    Bytes surfaceStatus() const;
    Bytes mnpStatus() const;
    Bytes boardPower() const;
    Bytes powerMode() const;
    /// A record of zeros but for its lengths when there is no such drive.
    /// `original`: as it was before spares took drives' places.
    Bytes logicalDriveConfiguration(unsigned drive, bool original, ControllerUnits const* units) const;
    Bytes logicalDriveStatus(unsigned drive) const;
    Bytes identifyLogicalDrive(unsigned drive) const;
    /// Nothing when there is no such page.
    std::optional<Bytes> encryptionPage(unsigned page) const;

  private:
    using Override = RecordOverride;
    struct LogicalDrive {
        Override configuration;
        Override original;
        Override status;
        Override identify;
    };
    void checkAll() const;

    Facts m_facts;
    std::map<std::string, Override> m_overrides;
    std::vector<LogicalDrive> m_logicalDrives;
    std::map<unsigned, Override> m_encryptionPages;
};

}  // namespace simulator
