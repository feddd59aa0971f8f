#pragma once

/// What hangs behind the phys of a SAS adapter: end devices, and expanders with phys of their own.

#include <array>
#include <memory>
#include <vector>

#include "simulator/scsi_target.h"

namespace simulator {

using SasAddress = std::array<std::uint8_t, 8>;

/// The other end of a phy.
struct SasDevice {
    /// Not while what is there restarts: its phy has no link then.
    bool present(std::uint64_t now) const { return !target || target->present(now); }

    /// As the IDENTIFY address frame has it: 1 end device, 2 edge expander, 3 fanout expander.
    std::uint8_t type = 1;
    std::uint8_t targetProtocols = 8;  ///< 1 SATA, 2 SMP, 4 STP, 8 SSP
    SasAddress address{};
    std::shared_ptr<ScsiTarget> target;            ///< null: nothing here takes SCSI commands
    std::vector<std::shared_ptr<SasDevice>> phys;  ///< of an expander; null where nothing is attached
    std::uint8_t phyCount = 0;                     ///< that it reports
};

using SasPhys = std::vector<std::shared_ptr<SasDevice>>;

/// Reads a list of phys: null, or an object with "kind" (a SCSI target's, or "expander", "fanout_expander",
/// "host") and "sas_address"; the address of another phy's device alone, {"same_as": address}, makes a wide
/// port. Throws ScenarioError.
SasPhys readPhys(Value const& value, TargetPlace const& place);

/// Every target behind the phys that keeps something, once.
std::vector<ScsiTarget*> sasTargets(SasPhys const& phys);

/// The device at an address, at any depth; null when there is none.
SasDevice* findSasDevice(SasPhys const& phys, SasAddress const& address);

/// An expander's answer to an SMP request frame (SAS): REPORT GENERAL and DISCOVER.
Bytes answerSmp(SasDevice const& expander, Bytes const& request, std::uint64_t now);
/// "SMP DISCOVER".
std::string smpName(Bytes const& request);

}  // namespace simulator
