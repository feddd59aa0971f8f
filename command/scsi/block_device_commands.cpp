#include "command/scsi/block_device_commands.h"

#include "command/endian.h"

SCSIReadCapacity10::SCSIReadCapacity10(std::uint32_t blockAddress)
    : ScsiBlockCommand(10, {0x25}, Direction::In, 8) {
    setNumber(2, 4, blockAddress);
}

std::uint32_t SCSIReadCapacity10::lastBlock() const {
    return readBigEndian<std::uint32_t>(&data()[0]);
}

std::uint32_t SCSIReadCapacity10::blockLength() const {
    return readBigEndian<std::uint32_t>(&data()[4]);
}

// SERVICE ACTION IN (16), READ CAPACITY (16).
SCSIReadCapacity16::SCSIReadCapacity16() : ScsiBlockCommand(16, {0x9E, 0x10}, Direction::In, 32) {
    setNumber(10, 4, data().size());
}

std::uint64_t SCSIReadCapacity16::lastBlock() const {
    return readBigEndian<std::uint64_t>(&data()[0]);
}

std::uint32_t SCSIReadCapacity16::blockLength() const {
    return readBigEndian<std::uint32_t>(&data()[8]);
}

SCSIRead10::SCSIRead10(std::uint32_t block, std::uint16_t count, std::uint32_t blockLength)
    : ScsiBlockCommand(10, {0x28}, Direction::In, std::size_t{count} * blockLength) {
    setNumber(2, 4, block);
    setNumber(7, 2, count);
}

SCSIRead16::SCSIRead16(std::uint64_t block, std::uint32_t count, std::uint32_t blockLength)
    : ScsiBlockCommand(16, {0x88}, Direction::In, std::size_t{count} * blockLength) {
    setNumber(2, 8, block);
    setNumber(10, 4, count);
}

SCSIWrite10::SCSIWrite10(std::uint32_t block, std::uint16_t count, Bytes data)
    : ScsiBlockCommand(10, {0x2A}, Direction::Out, std::move(data)) {
    setNumber(2, 4, block);
    setNumber(7, 2, count);
}
