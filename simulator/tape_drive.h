#pragma once

#include "simulator/scsi_target.h"

namespace simulator {

/// A tape drive: it has a name and a version, and takes no firmware.
class TapeDrive : public ScsiTarget {
  public:
    TapeDrive(InquiryIdentity identity, std::string name)
        : ScsiTarget(std::move(identity)), m_name(std::move(name)) {}

    std::string name() const override { return m_name; }
    bool pristine() const override { return true; }
    void summarise(DeviceSummary& row, std::uint64_t) const override {
        row.kind = "tape";
        row.product = m_identity.product;
        row.running = row.stored = m_identity.revision;
    }

  private:
    std::string m_name;
};

}  // namespace simulator
