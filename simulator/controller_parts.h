#pragma once

/// What else is on an array controller's board and takes data: the cache module's microcontroller, and NVRAM
/// on the I2C bus.

#include <map>
#include <optional>

#include "simulator/exchange.h"
#include "simulator/part_firmware.h"
#include "simulator/value.h"

namespace simulator {

class ControllerParts {
  public:
    /// Reads "cache_firmware" and "i2c_nvram" of a device. Throws ScenarioError.
    ControllerParts(Object const& device, std::filesystem::path const& firmware, std::string const& name);

    /// Version that the cache module runs; 0 without one.
    unsigned cacheVersion() const;
    /// A whole image for the cache module. It runs at once.
    Reply flashCache(Bytes const& image);
    std::vector<FirmwarePart> parts() const;

    /// The 256 bytes of an identity; a check condition when nothing answers there.
    Reply readNvram(unsigned id) const;
    /// The first bytes of it.
    Reply writeNvram(unsigned id, Bytes const& data);

    nlohmann::json save() const;
    void load(nlohmann::json const& state);

  private:
    std::optional<PartFirmware> m_cache;
    std::map<unsigned, Bytes> m_nvram;
};

}  // namespace simulator
