#pragma once

#include <string>

/// Shows how far a flash has come while it stands: one line on standard error that is overwritten in place
/// and wiped at the end. Only where a person watches: not when the run is silent or standard error isn't a
/// terminal.
class ProgressLine {
  public:
    /// `subject` names the device.
    explicit ProgressLine(std::string const& subject);
    ~ProgressLine();
    ProgressLine(ProgressLine const&) = delete;
    ProgressLine& operator=(ProgressLine const&) = delete;
};
