#pragma once

#include "command/devices.h"
#include "command/reply_buffer.h"
#include "command/traits.h"

// Sending a request with a command's buffer, for records of fixed size and for records that newer firmware
// makes longer. What the templates of ControllerCommand and LogicalDriveCommand share.

// What a command block can ask for at most: its length field has two bytes. A controller that announces a
// longer reply isn't believed.
inline constexpr unsigned int MAX_REPLY_SIZE = 0xFFFF;

struct CommandShape {
    unsigned char commandByte;
    unsigned int defaultSize;
    unsigned int totalLengthOffset;  // or FIXED_SIZE
    // Whether the device is one that may know a longer record. False saves the probing send.
    bool mayHaveGrown;
};

// `request` has everything but buffer, length and override. Without data (None) it is sent as it is. A reply
// of fixed size is asked for at the buffer's length, or at what the device's size memo says if that is more.
// A growing reply is first asked for at the buffer's length; what it announces goes into the memo, and only
// when the buffer was too small it is asked for again. The first outcome decides for the life of the memo,
// even when that first send failed: then the default size stays.
bool sendSized(BMICDevice& device, Interface::SysMod::Command::BMICRequest& request, ReplyBuffer& buffer,
               CommandShape const& shape, unsigned int cdbLengthOverride);
