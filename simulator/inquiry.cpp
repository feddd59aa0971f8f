#include "simulator/inquiry.h"

#include <algorithm>

namespace simulator {

namespace {

Bytes standardData(InquiryIdentity const& identity) {
    Bytes data(96, 0);
    data[0] = identity.peripheralType;
    data[2] = 6;  // SPC-4
    data[3] = 2;  // response data format
    data[4] = 91;
    data[7] = 2;  // commands are queued
    putText(&data[8], 8, identity.vendor);
    putText(&data[16], 16, identity.product);
    putText(&data[32], 4, identity.revision);
    return data;
}

Bytes page(InquiryIdentity const& identity, std::uint8_t code, Bytes const& contents) {
    Bytes data(4 + contents.size());
    data[0] = identity.peripheralType;
    data[1] = code;
    putBig(&data[2], 2, contents.size());
    std::copy(contents.begin(), contents.end(), data.begin() + 4);
    return data;
}

Bytes designator(InquiryIdentity const& identity) {
    Bytes data = {0x01, 0x03, 0, 8};  // binary, NAA, of the logical unit
    data.resize(12);
    putBig(&data[4], 8, identity.worldWideName);
    return data;
}

}  // namespace

Reply inquiry(Command const& command, InquiryIdentity const& identity) {
    if (command.block.size() < 6)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                             "INQUIRY of " + std::to_string(command.block.size()) + " bytes, expected 6");
    bool const vital = (command.block[1] & 1) != 0;
    std::uint8_t const code = command.block[2];
    Reply reply;
    if (!vital && code == 0) {
        reply.data = standardData(identity);
    } else if (vital && code == 0x00) {
        reply.data = page(identity, code, {0x00, 0x80, 0x83});
    } else if (vital && code == 0x80) {
        reply.data = page(identity, code, Bytes(identity.serial.begin(), identity.serial.end()));
    } else if (vital && code == 0x83) {
        reply.data = page(identity, code, designator(identity));
    } else {
        return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    }
    std::size_t const allocation = getBig(&command.block[3], 2);
    if (reply.data.size() > allocation) reply.data.resize(allocation);
    return reply;
}

}  // namespace simulator
