#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "command/endian.h"
#include "command/records/all_records.h"
#include "command/self_sizing.h"
#include "common/compound_list.h"
#include "common/debug_logger.h"
#include "core/device.h"
#include "storage/operations/adapter_properties.h"

namespace Operations {

/// The key under which a controller keeps its identity across discoveries: "SLOT_" and the slot; without
/// one "DBDF_" and its place on the bus; without that the decimal CRC-32 of its handle. `taken` are the keys
/// given out in this discovery: of two controllers in one slot, the second goes on to the next kind of key.
Common::string locationKeyOf(AdapterProperties const& adapter, Common::CompoundList const& taken);

/// Publishes what adapter discovery knows of a controller, its name included.
void publishAdapterProperties(Core::Device& device, AdapterProperties const& adapter);

/// Whether a reply holds all that its record says that it has. One that was cut on its way is no reply: what
/// didn't come would read as zeros, a lock as open and a zone as none. `what` names the record in the log.
template <class Command>
bool holdsWhole(Command const& command, char const* what) {
    auto const& record = command.record();
    std::size_t needed = 1;  // of a record that doesn't tell its length: anything at all
    std::size_t told = 0;
    if constexpr (requires { record.dwFixedStructureLength; }) {
        needed = offsetof(typename Command::Record, dwFixedStructureLength) + sizeof(std::uint32_t);
        told = ConvertLittleEndianToValue<std::uint32_t>(record.dwFixedStructureLength);
    } else if constexpr (requires { record.dwTotalStructureLength; }) {
        needed = offsetof(typename Command::Record, dwTotalStructureLength) + sizeof(std::uint32_t);
        told = ConvertLittleEndianToValue<std::uint32_t>(record.dwTotalStructureLength);
    }
    needed = std::max(needed, std::min(told, command.buffer().size()));
    if (command.receivedLength() >= needed) {
        return true;
    }
    Common::DebugLogger::LogCommand("%s refused: %u bytes came, at least %u expected", what,
                                    command.receivedLength(), static_cast<unsigned>(needed));
    return false;
}

/// The bytes that came, for members of which the reply tells the place.
template <class Command>
std::span<unsigned char const> replyOf(Command const& command) {
    return command.buffer().first(std::min<std::size_t>(command.receivedLength(), command.buffer().size()));
}

/// Makes room for all that the reply told, for a second ask: a reply may have been cut on its way, or the
/// size that is asked for was fixed when the first ask of all failed.
template <class Command>
void makeRoomForTotal(Command& command, char const* what) {
    unsigned const told = ConvertLittleEndianToValue<std::uint32_t>(command.record().dwTotalStructureLength);
    Common::DebugLogger::LogCommand("%s is cut: %u of %u bytes came; asking again", what,
                                    command.receivedLength(), told);
    command.PassThrough(true);  // the reply cache has the cut one
    command.SetBuffer(nullptr, std::clamp<unsigned>(told, command.buffer().size(), MAX_REPLY_SIZE));
}

/// Of what a run can do without. A controller that isn't ready for it would hold the run up for two minutes
/// at each command.
inline constexpr unsigned char OPTIONAL_REPEATS = 2;

/// Whether the record reaches behind bControllerMode: a record of a firmware that predates a member has no
/// such member, whatever the buffer then holds.
bool isControllerModeValid(Records::IDENTIFY_CONTROLLER const& identify);
bool isEvenMoreControllerFlagsValid(Records::IDENTIFY_CONTROLLER const& identify);

/// The controller runs as an array controller, as opposed to a plain adapter.
bool isVaultlineMode(Records::IDENTIFY_CONTROLLER const& identify);

/// The printable name of a controller's model, or a general one.
Common::string ArrayControllerMarketingNameFor(Core::Device* device);

}  // namespace Operations
