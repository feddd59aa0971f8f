#pragma once

#include <cstdint>
#include <optional>
#include <span>

/// Decoding the pages in which solid state drives tell of their wear. A page is as long as its reply or as it
/// says, whichever is less; nothing behind that is looked at.
namespace Operations {

/// The numeric value of a SCSI log page's parameter (SPC: code, control, length, value, high byte first): the
/// first of this code with 1 to 8 bytes. Nothing where a parameter doesn't lie within its page.
std::optional<std::uint64_t> logParameter(std::span<unsigned char const> page, unsigned code);

/// The bytes of such a parameter; empty without it.
std::span<unsigned char const> logParameterBytes(std::span<unsigned char const> page, unsigned code);

/// One value of an ATA device statistics page (ACS): eight bytes at `offset`, which tell that they are
/// supported and valid. Nothing on another page than `number`.
std::optional<std::uint32_t> deviceStatistic(std::span<unsigned char const> page, unsigned number,
                                             unsigned offset);

}  // namespace Operations
