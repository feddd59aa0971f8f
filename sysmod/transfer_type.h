#pragma once

#include <cstdint>

namespace Interface::SysMod::Command {

/// Direction of a command's data, as the requests carry it. The numbers are shared by every request record
/// and appear by name in the command log. 1 and 3 are the controller's task management messages.
enum class EnTransferType : std::uint32_t {
    In = 0,          ///< data from the device
    MessageIn = 1,   ///< message with data in
    Out = 2,         ///< data to the device
    MessageOut = 3,  ///< message with data out
    InOut = 4,       ///< data both ways
    None = 5,        ///< no data
};

/// The direction's word in the command log: "In", "Out", "InOut" or "None"; a message has the word of its
/// data's direction.
char const* toText(EnTransferType transferType);

}  // namespace Interface::SysMod::Command
