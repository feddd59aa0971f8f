#pragma once

/// A SCSI device that isn't reached by a node of its own: it is behind a controller or a SAS adapter, which
/// hands it the commands that are addressed to it. A kind that answers more is a subclass and a row in
/// scsi_target.cpp.

#include <filesystem>
#include <memory>

#include "simulator/inquiry.h"
#include "simulator/machine.h"
#include "simulator/part_firmware.h"
#include "simulator/value.h"

namespace simulator {

class ScsiTarget {
  public:
    explicit ScsiTarget(InquiryIdentity identity) : m_identity(std::move(identity)) {}
    virtual ~ScsiTarget() = default;

    /// What it says of itself now; firmware may change it.
    InquiryIdentity const& identity() const { return m_identity; }
    /// TEST UNIT READY and INQUIRY; anything else is an invalid operation code.
    virtual Reply execute(Command const& command);

    /// Unique among what is behind one device; empty for a target that keeps nothing. The following are
    /// called for targets with a name only.
    virtual std::string name() const { return {}; }
    /// Makes the files of a new machine.
    virtual void initialise() {}
    virtual void powerCycle(std::vector<std::string>& /*events*/) {}
    /// As it was made: its state needn't be kept. A target that may be is brought back by reset().
    virtual bool pristine() const { return false; }
    virtual void reset() {}
    virtual nlohmann::json saveState() const { return nlohmann::json::object(); }
    virtual void loadState(nlohmann::json const&) {}
    virtual void summarise(DeviceSummary&, std::uint64_t /*now*/) const {}
    virtual Bytes romImage(Rom) const { return {}; }
    virtual std::vector<FirmwarePart> parts() const { return {}; }

    /// Whether its adapter sees it at a virtual time: a target that restarts is away.
    virtual bool present(std::uint64_t /*now*/) const { return true; }
    /// The adapter looks for what is new behind it.
    virtual void scan(std::uint64_t /*now*/) {}
    /// A fault kept a command from it.
    virtual void missed(Command const&) {}

  protected:
    InquiryIdentity m_identity;
};

/// Where a target is.
struct TargetPlace {
    std::uint64_t worldWideName = 0;  ///< goes to page 0x83
    std::filesystem::path firmware;   ///< directory of images
    std::string device;               ///< name of the device that it is behind
    std::string port;                 ///< of the box that it is in, two characters; empty for none
    unsigned box = 0;
    std::string chassisSerial;
    bool hasIndex = false;  ///< behind a controller
    unsigned index = 0;     ///< there
};

/// Reads "kind" ("drive", "tape", "enclosure_processor", "volume", "array_controller"), "vendor", "product",
/// "revision", "serial" and "peripheral_type", and what the kind has more. Throws ScenarioError.
std::unique_ptr<ScsiTarget> makeScsiTarget(Object const& object, TargetPlace const& place);
/// The same for an object that doesn't tell its kind.
std::unique_ptr<ScsiTarget> makeScsiTarget(Object const& object, TargetPlace const& place,
                                           std::string const& kind);

/// Tells processors in one box of each other. Throws ScenarioError when two targets have one name; `where` is
/// the device's.
void joinTargets(std::vector<ScsiTarget*> const& targets, std::string const& where);

/// "name" of a target, letters, digits, '.', '_' and '-', or `fallback`. Throws ScenarioError.
std::string readTargetName(Object const& object, std::string const& fallback);

/// The name of a SCSI command block's operation code, "SCSI 0x5A" for one that nobody here answers.
std::string scsiName(std::uint8_t operationCode);

/// Sixteen hexadecimal digits, as an address of eight bytes.
std::array<std::uint8_t, 8> readAddressText(Value const& value);

}  // namespace simulator
