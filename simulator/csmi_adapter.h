#pragma once

#include <set>

#include "simulator/device.h"
#include "simulator/sas_topology.h"

namespace simulator {

/// A plain SAS adapter that answers CSMI. All of them share one node; the controller number in a record's
/// header is the adapter's instance.
class CsmiAdapter : public Device {
  public:
    struct Setup {
        std::string serial;
        std::uint16_t slot = 0;
        std::uint32_t status = 1;
        SasAddress address{};
        std::array<std::uint16_t, 4> firmware{};
        std::array<std::uint16_t, 4> rom{};
        std::array<std::uint16_t, 4> driver{};
        SasPhys phys;
        std::uint8_t phyCount = 0;  ///< that it reports
    };

    CsmiAdapter(DeviceFrame frame, Setup setup) : Device(std::move(frame)), m_setup(std::move(setup)) {}

    bool answers(Request request) const override { return request == Request::Csmi; }
    std::string commandName(Command const& command) const override;
    Reply execute(Command const& command) override;
    void powerCycle(std::vector<std::string>&) override { m_paused.clear(); }
    nlohmann::json saveState() const override { return {{"paused", m_paused}}; }
    void loadState(nlohmann::json const& state) override {
        m_paused = state.at("paused").get<std::set<std::string>>();
    }
    void summarise(DeviceSummary& row) override;
    std::vector<ScsiTarget*> targets() const override { return sasTargets(m_setup.phys); }
    ScsiTarget* targetOf(Command const& command) const override;

  private:
    Bytes driverInformation() const;
    Bytes configuration() const;
    Bytes phyInformation(std::uint64_t now) const;
    Reply pause(Command const& command);

    Setup m_setup;
    std::set<std::string> m_paused;  ///< addresses of devices whose background activity is paused
};

/// The "csmi_adapter" of a scenario.
std::unique_ptr<Device> makeCsmiAdapter(DeviceFrame frame, Object const& object,
                                        std::filesystem::path const& firmware);

}  // namespace simulator
