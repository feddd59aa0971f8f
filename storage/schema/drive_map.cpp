#include "storage/schema/drive_map.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "command/endian.h"
#include "command/records/all_records.h"
#include "common/debug_logger.h"

namespace Schema {
namespace {

using Identify = Records::IDENTIFY_CONTROLLER;

struct IdentifyMapRow {
    unsigned fixedOffset;
    unsigned extendedOffsetAt;
};

/// By PhysicalDriveMap::EnIdentifyMap.
constexpr IdentifyMapRow IDENTIFY_MAPS[] = {
    {offsetof(Identify, pbBigDrivePresentMap), offsetof(Identify, wOffsetToExtendedDrivePresentMap)},
    {offsetof(Identify, pbBigExternalDriveMap), offsetof(Identify, wOffsetToExtendedExternalDriveMap)},
    {offsetof(Identify, pbBigNonDiskMap), offsetof(Identify, wOffsetToExtendedNonDiskMap)},
};

constexpr unsigned bytesFor(unsigned devices) {
    return (devices + 7) / 8;
}

unsigned wordAt(std::span<unsigned char const> reply, unsigned offset) {
    std::uint16_t word = 0;
    if (offset + sizeof word <= reply.size()) std::memcpy(&word, reply.data() + offset, sizeof word);
    return ConvertLittleEndianToValue(word);
}

}  // namespace

DriveMap::DriveMap(unsigned devices) : m_size(std::min(devices, MOST_DEVICES)) {}

void DriveMap::InitializeDriveMap(std::span<unsigned char const> reply, unsigned fixedOffset,
                                  unsigned extendedOffset, unsigned devices) {
    if (devices > FIXED_DEVICES) {
        if (devices <= MOST_DEVICES && extendedOffset != 0 && extendedOffset < reply.size() &&
            bytesFor(devices) <= reply.size() - extendedOffset) {
            read(reply.subspan(extendedOffset), devices);
            return;
        }
        Common::DebugLogger::LogCommand(
            "Drive map of %u devices at %u refused, at most %u devices within %u bytes of reply expected; "
            "taking the first %u devices",
            devices, extendedOffset, MOST_DEVICES, static_cast<unsigned>(reply.size()), FIXED_DEVICES);
    }
    if (fixedOffset > reply.size() || reply.size() - fixedOffset < bytesFor(FIXED_DEVICES)) {
        Common::DebugLogger::LogCommand("Drive map at %u refused: the reply has %u bytes", fixedOffset,
                                        static_cast<unsigned>(reply.size()));
        read({}, FIXED_DEVICES);
        return;
    }
    read(reply.subspan(fixedOffset), FIXED_DEVICES);
}

bool DriveMap::isCut(std::size_t came, unsigned extendedOffset, unsigned devices, std::size_t told) {
    std::size_t const end = extendedOffset + bytesFor(devices);
    return devices > FIXED_DEVICES && devices <= MOST_DEVICES && extendedOffset != 0 && end > came &&
           end <= told;
}

void DriveMap::read(std::span<unsigned char const> bytes, unsigned devices) {
    m_bits.reset();
    m_size = devices;
    for (unsigned number = 0; number < devices && number / 8 < bytes.size(); ++number) {
        if ((bytes[number / 8] >> (number % 8) & 1) != 0) m_bits.set(number);
    }
}

void DriveMap::set(unsigned number) {
    if (number >= m_size) {
        Common::DebugLogger::LogCommand("Device number %u refused by a map of %u devices", number, m_size);
        return;
    }
    m_bits.set(number);
}

void DriveMap::limitTo(unsigned devices) {
    for (; m_size > devices; --m_size)
        m_bits.reset(m_size - 1);
}

DriveMap::NumberList DriveMap::numbers() const {
    NumberList numbers;
    for (unsigned number = 0; number < m_size; ++number) {
        if (m_bits.test(number)) numbers.push_back(static_cast<unsigned short>(number));
    }
    return numbers;
}

DriveMap& DriveMap::operator-=(DriveMap const& other) {
    for (unsigned short const number : other.numbers())
        m_bits.reset(number);
    return *this;
}

DriveMap& DriveMap::operator|=(DriveMap const& other) {
    m_size = std::max(m_size, other.m_size);
    for (unsigned short const number : other.numbers())
        m_bits.set(number);
    return *this;
}

bool PhysicalDriveMap::isCut(EnIdentifyMap which, std::span<unsigned char const> identifyReply) {
    constexpr unsigned TOLD_AT = offsetof(Identify, dwTotalStructureLength);
    std::size_t const told = wordAt(identifyReply, TOLD_AT) | wordAt(identifyReply, TOLD_AT + 2) << 16;
    return isCut(identifyReply.size(), wordAt(identifyReply, IDENTIFY_MAPS[which].extendedOffsetAt),
                 wordAt(identifyReply, offsetof(Identify, wMaximumPhysicalDevicesSupported)), told);
}

void PhysicalDriveMap::InitializeDriveMap(EnIdentifyMap which, std::span<unsigned char const> identifyReply) {
    IdentifyMapRow const& row = IDENTIFY_MAPS[which];
    InitializeDriveMap(identifyReply, row.fixedOffset, wordAt(identifyReply, row.extendedOffsetAt),
                       wordAt(identifyReply, offsetof(Identify, wMaximumPhysicalDevicesSupported)));
}

}  // namespace Schema
