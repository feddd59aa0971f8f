#pragma once

/// A SCSI device that isn't reached by a node of its own: it is behind a controller or a SAS adapter, which
/// hands it the commands that are addressed to it. A kind that answers more is a subclass and a row in
/// scsi_target.cpp.

#include <memory>

#include "simulator/inquiry.h"
#include "simulator/value.h"

namespace simulator {

class ScsiTarget {
  public:
    explicit ScsiTarget(InquiryIdentity identity) : m_identity(std::move(identity)) {}
    virtual ~ScsiTarget() = default;

    InquiryIdentity const& identity() const { return m_identity; }
    /// TEST UNIT READY and INQUIRY; anything else is an invalid operation code.
    virtual Reply execute(Command const& command);

  private:
    InquiryIdentity m_identity;
};

/// Reads "kind" ("drive", "tape", "enclosure_processor", "volume", "array_controller"), "vendor", "product",
/// "revision", "serial" and "peripheral_type". `worldWideName` goes to page 0x83.
std::unique_ptr<ScsiTarget> makeScsiTarget(Object const& object, std::uint64_t worldWideName);

/// The name of a SCSI command block's operation code, "SCSI 0x5A" for one that nobody here answers.
std::string scsiName(std::uint8_t operationCode);

/// Sixteen hexadecimal digits, as an address of eight bytes.
std::array<std::uint8_t, 8> readAddressText(Value const& value);

}  // namespace simulator
