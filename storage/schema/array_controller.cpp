#include "storage/schema/array_controller.h"

#include "command/endian.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "storage/schema/identity.h"
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
    : ConcreteBMICDevice(handle, isRemote, maxLogicalUnits, maxPhysicalUnits),
      ConcreteSCSIDevice(handle),
      m_locationKey(locationKey),
      m_maxPhysicalUnits(maxPhysicalUnits),
      m_maxLogicalUnits(maxLogicalUnits) {
    publish(*this, Interface::TOLKMod::Device::ATTR_NAME_TYPE, Names::ATTR_VALUE_TYPE_ARRAY_CONTROLLER);
}

void ArrayController::InitializeSupport(Common::copy_ptr<Records::IDENTIFY_CONTROLLER> const& identify) {
    m_maxLogicalUnits =
        checkedLimit(ConvertLittleEndianToValue<std::uint16_t>(identify->wMaximumLogicalDevicesSupported),
                     m_maxLogicalUnits, MOST_LOGICAL_UNITS, "logical units");
    m_maxPhysicalUnits =
        checkedLimit(ConvertLittleEndianToValue<std::uint16_t>(identify->wMaximumPhysicalDevicesSupported),
                     m_maxPhysicalUnits, MOST_PHYSICAL_UNITS, "physical units");
}

void ArrayController::SetControllerStatusNotOk(Common::string const& state) {
    publish(*this, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_NOT_OK);
    publish(*this, Names::ATTR_NAME_CONTROLLER_STATE, state);
}

void ArrayController::UpdateWith(Common::shared_ptr<Core::Device> other) {
    if (auto const* twin = dynamic_cast<ArrayController const*>(other.get())) {
        m_maxLogicalUnits = twin->m_maxLogicalUnits;
        m_maxPhysicalUnits = twin->m_maxPhysicalUnits;
        ConcreteBMICDevice::operator=(*twin);
        ConcreteSCSIDevice::operator=(*twin);
    }
}

bool ArrayController::operator==(Core::Device const& other) const {
    return isSameKindAndIdentity(*this, other);
}

bool ArrayController::extendedDrivemapSupport() const {
    return m_maxPhysicalUnits > FIXED_MAP_UNITS;
}

bool ArrayController::smallDrivemapSupport() const {
    return m_maxPhysicalUnits <= SMALL_MAP_UNITS;
}

Core::OperationReturn ArrayController::performImpl(Core::VisitorDevice& visitor) {
    return Core::DispatchVisit<VisitorArrayController>(visitor, *this);
}

Common::string ArrayController::toStringImpl() const {
    return Common::string("AC:") + m_locationKey;
}

}  // namespace Schema
