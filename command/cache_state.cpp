#include "command/cache_state.h"

#include <algorithm>
#include <cstring>

#include "common/debug_logger.h"
#include "sysmod/device_handle.h"

namespace {

constexpr unsigned char SCSI_KEY_MARK = 83;

constexpr unsigned DETAILS_SHIFT = 8;
constexpr unsigned UNIT_SHIFT = 40;

}  // namespace

BMIC_KEY MAKE_BMIC_KEY(std::uint8_t commandByte, std::uint32_t details, std::uint16_t unit) {
    return commandByte | static_cast<BMIC_KEY>(details) << DETAILS_SHIFT |
           static_cast<BMIC_KEY>(unit) << UNIT_SHIFT;
}

std::uint8_t GET_BMIC_COMMAND(BMIC_KEY key) {
    return static_cast<std::uint8_t>(key);
}

std::uint32_t GET_BMIC_DETAILS(BMIC_KEY key) {
    return static_cast<std::uint32_t>(key >> DETAILS_SHIFT);
}

std::uint16_t GET_BMIC_LUN(BMIC_KEY key) {
    return static_cast<std::uint16_t>(key >> UNIT_SHIFT);
}

bool SCSI_KEY::operator==(SCSI_KEY const& other) const {
    return std::memcmp(bytes, other.bytes, SIZE) == 0;
}

bool SCSI_KEY::operator<(SCSI_KEY const& other) const {
    return std::memcmp(bytes, other.bytes, SIZE) < 0;
}

void MAKE_SCSI_KEY(SCSI_KEY& key, unsigned char cdbLength, unsigned char const* cdb,
                   unsigned char const* sasAddress, unsigned char sasAddressLength) {
    key = SCSI_KEY();
    if (cdbLength > SCSI_KEY::SIZE) {
        Common::DebugLogger::LogCommand("Command block of %u bytes refused as cache key, at most %u expected",
                                        cdbLength, SCSI_KEY::SIZE);
    }
    if (cdb != nullptr) std::copy_n(cdb, std::min<unsigned>(cdbLength, SCSI_KEY::SIZE), key.bytes);
    key.bytes[0] = SCSI_KEY_MARK;
    key.bytes[1] = sasAddress != nullptr && sasAddressLength != 0 ? sasAddress[0] : 0;
}

CacheStateMap& cacheStates() {
    static CacheStateMap s_states;
    return s_states;
}

CACHE_STATE* findCacheState(Common::string const& handle) {
    CacheStateMap& states = cacheStates();
    CacheStateMap::iterator const found = states.find(Core::SysMod::getDeviceUniqueKey(handle));
    return found != states.end() ? &found->second : nullptr;
}

CacheControls& cacheControls() {
    static CacheControls s_controls;
    return s_controls;
}

AdapterListCache& adapterListCache() {
    static AdapterListCache s_lists;
    return s_lists;
}
