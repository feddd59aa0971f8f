#pragma once

#include "simulator/collect_buffer.h"
#include "simulator/controller_firmware.h"
#include "simulator/controller_nvram.h"
#include "simulator/controller_parts.h"
#include "simulator/controller_records.h"
#include "simulator/controller_units.h"
#include "simulator/device.h"

namespace simulator {

/// An array controller. It answers SCSI commands on its node and, through the pass-through, its own
/// management commands (ten-byte command blocks 0x26 and 0x27 with the command's code in byte 6), and it
/// judges the sequence that carries firmware to it.
class ArrayController : public Device {
  public:
    struct Setup {
        std::string model;  ///< words for people
        std::string product;
        std::string serial;
        std::uint64_t worldWideName = 0;
        bool updatesWithoutDowntime = false;
        std::size_t collectLimit = 0;  ///< bytes
    };

    ArrayController(DeviceFrame frame, Setup setup, ControllerFirmware firmware, ControllerRecords records,
                    CollectBuffer collected, ControllerUnits units, ControllerParts parts,
                    ControllerNvram nvram);

    bool answers(Request request) const override {
        return request != Request::Unknown && request != Request::Csmi;
    }
    std::string commandName(Command const& command) const override;
    std::uint8_t opcode(Command const& command) const override;
    Reply execute(Command const& command) override;

    void initialise() override { m_firmware.initialise(); }
    void powerCycle(std::vector<std::string>& events) override;
    nlohmann::json saveState() const override;
    void loadState(nlohmann::json const& state) override;
    void summarise(DeviceSummary& row) override;
    Bytes romImage(Rom rom) override { return m_firmware.contents(rom); }
    std::vector<FirmwarePart> parts() const override { return m_parts.parts(); }
    std::vector<ScsiTarget*> targets() const override { return m_units.targets(); }
    ScsiTarget* targetOf(Command const& command) const override;

    /// A management command: its code, name, direction, the virtual time it takes and what carries it out
    /// (null: known by name, not supported).
    struct Management {
        std::uint8_t code;
        char const* name;
        Direction direction;
        std::uint64_t microseconds;
        Reply (ArrayController::*run)(Command const&);
    };
    /// A code may have a row for each direction: `block` is the whole command block, of 7 bytes at least.
    static Management const* findManagement(Bytes const& block);

    Reply identifyController(Command const&);
    Reply senseSubsystem(Command const&);
    Reply senseLogicalDriveConfiguration(Command const& command);
    Reply senseOriginalConfiguration(Command const& command);
    Reply senseLogicalDriveStatus(Command const& command);
    Reply identifyLogicalDrive(Command const& command);
    Reply senseParameters(Command const&);
    Reply senseRedundantParameters(Command const&);
    Reply senseCacheConfiguration(Command const& command);
    Reply senseSurfaceStatus(Command const&);
    Reply senseMnpStatus(Command const&);
    Reply senseEncryption(Command const& command);
    Reply boardPower(Command const&);
    Reply powerMode(Command const&);
    Reply senseDeferredUpdate(Command const& command);
    Reply senseBusParameters(Command const& command);
    Reply identifyPhysicalDevice(Command const& command);
    Reply specialInquiry(Command const& command);
    Reply senseMnpStatistics(Command const& command);
    Reply senseEraseProgress(Command const&);
    Reply flashComponent(Command const& command);
    Reply readNvram(Command const& command);
    Reply writeNvram(Command const& command);
    Reply pause(Command const& command);
    Reply resume(Command const& command);
    Reply freeCollected(Command const&);
    Reply collect(Command const& command);
    Reply flash(Command const& command);
    Reply softReset(Command const&);
    Reply toggleRom(Command const&);

  private:
    Reply manage(Command const& command);
    Reply scsi(Command const& command);
    ControllerRecords::FirmwareVersions versions() const;
    void restart(std::vector<std::string>& events);

    Setup m_setup;
    ControllerFirmware m_firmware;
    ControllerRecords m_records;
    CollectBuffer m_collected;
    ControllerUnits m_units;
    ControllerParts m_parts;
    ControllerNvram m_nvram;
    bool m_paused = false;
};

/// The "array_controller" of a scenario; its files go to `firmware`.
std::unique_ptr<Device> makeArrayController(DeviceFrame frame, Object const& object,
                                            std::filesystem::path const& firmware);

}  // namespace simulator
