#include "storage/schema/array_controller.h"

#include <cstddef>

#include "command/endian.h"
#include "common/debug_logger.h"
#include "storage/vocabulary/array_controller.h"

namespace Schema {
namespace {

namespace Names = Interface::StorageMod::ArrayController;

constexpr unsigned short SMALL_MAP_UNITS = 32;
constexpr unsigned short FIXED_MAP_UNITS = 128;

/// Largest limits believed. Firmware in the field stays far below; a reply beyond them is a broken one, and
/// loops over unit numbers must end.
constexpr unsigned short MOST_LOGICAL_UNITS = 256;
constexpr unsigned short MOST_PHYSICAL_UNITS = 4096;

// Bits of the identify record.
constexpr std::uint8_t SAS_FEATURE = 1U << 0;      // pbFeaturesSupported, first byte
constexpr std::uint32_t SPLIT_MIRROR = 1U << 6;    // dwYetMoreControllerFlags
constexpr std::uint32_t NWAY_MIRRORING = 1U << 0;  // dwEvenMoreControllerFlags

/// A record of a firmware that predates a member doesn't have it, whatever the buffer then holds.
bool hasEvenMoreControllerFlags(Records::IDENTIFY_CONTROLLER const& identify) {
    constexpr auto end = offsetof(Records::IDENTIFY_CONTROLLER, dwEvenMoreControllerFlags) +
                         sizeof(Records::IDENTIFY_CONTROLLER::dwEvenMoreControllerFlags);
    return ConvertLittleEndianToValue<std::uint32_t>(identify.dwFixedStructureLength) >= end;
}

/// The limit that a controller told, or the one known before when it told none or one beyond belief.
unsigned short checkedLimit(unsigned short told, unsigned short known, unsigned short most,
                            char const* what) {
    if (told == 0) {
        return known;
    }
    if (told > most) {
        Common::DebugLogger::LogCommand("Controller tells %u %s, at most %u expected; keeping %u",
                                        static_cast<unsigned>(told), what, static_cast<unsigned>(most),
                                        static_cast<unsigned>(known));
        return known;
    }
    return told;
}

}  // namespace

ArrayController::ArrayController(Common::string const& handle, bool const& isRemote,
                                 unsigned short const& maxPhysicalUnits,
                                 unsigned short const& maxLogicalUnits, Common::string const& locationKey)
    : Node(Names::ATTR_VALUE_TYPE_ARRAY_CONTROLLER,
           ConcreteBMICDevice(handle, isRemote, maxLogicalUnits, maxPhysicalUnits),
           ConcreteSCSIDevice(handle)),
      m_locationKey(locationKey),
      m_maxPhysicalUnits(maxPhysicalUnits),
      m_maxLogicalUnits(maxLogicalUnits) {}

void ArrayController::InitializeSupport(Common::copy_ptr<Records::IDENTIFY_CONTROLLER> const& identify) {
    m_maxLogicalUnits =
        checkedLimit(ConvertLittleEndianToValue<std::uint16_t>(identify->wMaximumLogicalDevicesSupported),
                     m_maxLogicalUnits, MOST_LOGICAL_UNITS, "logical units");
    m_maxPhysicalUnits =
        checkedLimit(ConvertLittleEndianToValue<std::uint16_t>(identify->wMaximumPhysicalDevicesSupported),
                     m_maxPhysicalUnits, MOST_PHYSICAL_UNITS, "physical units");
    m_supportsSas = (identify->pbFeaturesSupported[0] & SAS_FEATURE) != 0;
    m_supportsSplitMirror =
        (ConvertLittleEndianToValue<std::uint32_t>(identify->dwYetMoreControllerFlags) & SPLIT_MIRROR) != 0;
    m_allowsNWayMirror = hasEvenMoreControllerFlags(*identify) &&
                         (ConvertLittleEndianToValue<std::uint32_t>(identify->dwEvenMoreControllerFlags) &
                          NWAY_MIRRORING) != 0;
}

void ArrayController::SetControllerStatusNotOk(Common::string const& state) {
    publish(*this, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_NOT_OK);
    publish(*this, Names::ATTR_NAME_CONTROLLER_STATE, state);
}

void ArrayController::takeOver(ArrayController const& twin) {
    m_maxLogicalUnits = twin.m_maxLogicalUnits;
    m_maxPhysicalUnits = twin.m_maxPhysicalUnits;
    m_allowsNWayMirror = twin.m_allowsNWayMirror;
    m_supportsSas = twin.m_supportsSas;
    m_supportsSplitMirror = twin.m_supportsSplitMirror;
}

bool ArrayController::extendedDrivemapSupport() const {
    return m_maxPhysicalUnits > FIXED_MAP_UNITS;
}

bool ArrayController::smallDrivemapSupport() const {
    return m_maxPhysicalUnits <= SMALL_MAP_UNITS;
}

}  // namespace Schema
