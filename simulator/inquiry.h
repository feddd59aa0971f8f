#pragma once

/// What every SCSI device answers about itself: INQUIRY with its vital product data (SPC).

#include <string>

#include "simulator/exchange.h"

namespace simulator {

struct InquiryIdentity {
    std::uint8_t peripheralType = 0;
    std::string vendor;               ///< 8 bytes of T10 vendor identification
    std::string product;              ///< 16 bytes
    std::string revision;             ///< 4 bytes
    std::string serial;               ///< page 0x80
    std::uint64_t worldWideName = 0;  ///< page 0x83, an NAA designator
};

/// Answers an INQUIRY of 6 bytes: standard data, or page 0x00, 0x80 or 0x83.
Reply inquiry(Command const& command, InquiryIdentity const& identity);

}  // namespace simulator
