#pragma once

/// An enclosure processor (SEP): a SCSI device that tells of its box and takes firmware by WRITE BUFFER, each
/// model in its own way.

#include <vector>

#include "simulator/controller_firmware.h"
#include "simulator/download.h"
#include "simulator/scsi_target.h"
#include "simulator/sep_models.h"

namespace simulator {

class EnclosureProcessor : public ScsiTarget {
  public:
    struct Setup {
        std::string name;
        TargetPlace place;
        std::string stored;  ///< version that waits for a restart; empty: the one that runs
        bool neverReturns = false;
        bool needsScan = false;
        std::uint64_t awayMicroseconds = 0;
        Bytes subcomponents;                   ///< of READ BUFFER 0xD0
        std::vector<std::string> descriptors;  ///< texts of the element descriptor page
        std::uint16_t zoning = 0;
        std::uint32_t configurationMode = 0;
    };

    EnclosureProcessor(InquiryIdentity identity, Setup setup);

    /// Of one model in one box: an image may reach both.
    bool isNeighbour(EnclosureProcessor const& other) const;
    void join(EnclosureProcessor& neighbour) { m_neighbours.push_back(&neighbour); }

    Reply execute(Command const& command) override;
    std::string name() const override { return m_setup.name; }
    void initialise() override;
    void powerCycle(std::vector<std::string>& events) override;
    nlohmann::json saveState() const override;
    void loadState(nlohmann::json const& state) override;
    void summarise(DeviceSummary& row, std::uint64_t now) const override;
    Bytes romImage(Rom rom) const override { return m_firmware.contents(rom); }
    bool present(std::uint64_t now) const override;
    void scan(std::uint64_t now) override;
    void missed(Command const& command) override;

  private:
    Reply answer(Command const& command);
    Reply writeBuffer(Command const& command);
    Reply take(Command const& command, std::uint8_t mode);
    Reply install(bool runsAtOnce, std::uint64_t now);
    Reply activate(std::uint64_t now);
    Reply diagnostic(Command const& command) const;
    Reply readBuffer(Command const& command) const;
    Reply vendorWrite(Command const& command);
    Bytes configurationPage() const;
    Bytes descriptorPage() const;
    /// What is stored runs; the processor is away for its time.
    void restart(std::uint64_t now, bool byPower, std::vector<std::string>& events);
    void becomeWhatRuns();

    Setup m_setup;
    SepModel const* m_model;
    std::string m_factoryProduct;
    std::uint64_t m_factoryName;  ///< world-wide name with the first firmware
    ControllerFirmware m_firmware;
    Download m_download;
    std::vector<EnclosureProcessor*> m_neighbours;
    std::string m_runningFamily;
    std::string m_storedFamily;
    std::uint64_t m_awayUntil = 0;  ///< virtual microseconds
    bool m_unscanned = false;       ///< it came back, and its adapter hasn't looked
    bool m_broken = false;          ///< a part of the download was refused or lost
};

std::unique_ptr<ScsiTarget> makeEnclosureProcessor(InquiryIdentity identity, Object const& object,
                                                   TargetPlace const& place);

}  // namespace simulator
