#pragma once

/// A drive, behind a controller or a SAS adapter: what it tells of itself (SCSI; SATA drives also ATA through
/// SAT's pass-through), and how it takes firmware.

#include <optional>

#include "simulator/download.h"
#include "simulator/part_firmware.h"
#include "simulator/record_filler.h"
#include "simulator/scsi_target.h"

namespace simulator {

enum class DriveInterface { Parallel, Sata, Sas, SataSsd, SasSsd };
enum class DriveState { Ok, Failing, Missing };
enum class DriveRole { Unassigned, Data, Spare };
/// As the identify record has it.
enum class Authentication : std::uint8_t { Ok = 0, Failed = 1, NotSupported = 2 };

class Drive : public ScsiTarget {
  public:
    /// A carrier with a microcontroller of its own.
    struct Carrier {
        std::string family;
        unsigned application = 0;  ///< version, 1 to 255
        unsigned bootloader = 0;
        Authentication authentication = Authentication::Ok;
    };
    struct Setup {
        std::string name;
        TargetPlace place;
        unsigned index = 0;  ///< among the controller's devices
        DriveInterface interface = DriveInterface::Sas;
        DriveState state = DriveState::Ok;
        DriveRole role = DriveRole::Unassigned;
        unsigned logicalDrive = 0;  ///< that it has the role in
        std::string revision;       ///< up to 8 characters where ATA tells it
        std::uint64_t blocks = 0;
        unsigned blockSize = 512;
        unsigned rotation = 0;  ///< per minute; 1 for a solid state drive
        unsigned bay = 0xFF;
        bool runsAtOnce = true;  ///< new firmware; otherwise after a power cycle
        std::optional<Carrier> carrier;
        Authentication authentication = Authentication::NotSupported;
        struct {
            unsigned percent = 0;  ///< of the endurance used
            unsigned remainingDays = 0xFFFF;
            unsigned powerOnHours = 0;
            unsigned powerCycles = 0;
            unsigned flags = 0;
        } wear;
        struct {
            unsigned status = 0;
            unsigned pattern = 0;
            unsigned percent = 0;
        } erase;
        RecordOverride statistics;
    };

    Drive(InquiryIdentity identity, Setup setup);

    Setup const& setup() const { return m_setup; }
    bool isSata() const {
        return m_setup.interface == DriveInterface::Sata || m_setup.interface == DriveInterface::SataSsd;
    }
    bool isSolidState() const {
        return m_setup.interface == DriveInterface::SataSsd || m_setup.interface == DriveInterface::SasSsd;
    }
    std::string const& version() const { return m_firmware.running(); }
    /// Of the carrier; 0 without one.
    unsigned carrierVersion() const;
    /// A whole image for the carrier. It runs at once.
    Reply flashCarrier(Bytes const& image);

    Reply execute(Command const& command) override;
    std::string name() const override { return m_setup.name; }
    void powerCycle(std::vector<std::string>& events) override;
    bool pristine() const override;
    void reset() override;
    nlohmann::json saveState() const override;
    void loadState(nlohmann::json const& state) override;
    void summarise(DeviceSummary& row, std::uint64_t now) const override;
    Bytes romImage(Rom) const override { return m_firmware.contents(); }
    std::vector<FirmwarePart> parts() const override;
    bool present(std::uint64_t) const override { return m_setup.state != DriveState::Missing; }

  private:
    Reply answer(Command const& command);
    Reply writeBuffer(Command const& command);
    Reply ata(Command const& command);
    Reply downloadMicrocode(Command const& command);
    Reply install();
    Reply capacity(Command const& command) const;
    Reply logSense(Command const& command) const;
    Bytes ataIdentity() const;
    /// A page of a general purpose log; nothing where there is none.
    std::optional<Bytes> ataLog(std::uint8_t log, std::uint8_t page) const;
    void becomeWhatRuns();

    Setup m_setup;
    PartFirmware m_firmware;
    std::optional<PartFirmware> m_carrier;
    Download m_download;
};

/// Reads what a drive has beside the identity. Throws ScenarioError.
std::unique_ptr<Drive> makeDrive(InquiryIdentity identity, Object const& object, TargetPlace const& place);

}  // namespace simulator
