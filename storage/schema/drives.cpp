#include "storage/schema/drives.h"

#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/physical_drive.h"
#include "storage/vocabulary/tape_drive.h"

namespace Schema {
namespace {

namespace Names = Interface::StorageMod;

/// By PhysicalDrive::EnDriveType.
constexpr char const* DRIVE_TYPES[] = {
    Names::PhysicalDrive::ATTR_VALUE_DRIVE_TYPE_DATA,
    Names::PhysicalDrive::ATTR_VALUE_DRIVE_TYPE_SPARE,
    Names::PhysicalDrive::ATTR_VALUE_DRIVE_TYPE_UNASSIGNED,
    Names::PhysicalDrive::ATTR_VALUE_DRIVE_TYPE_CACHE,
};

/// Below it an identify command names a drive by bus and target, as controllers with the oldest maps still
/// do; the bits of all later maps are addressed behind it.
constexpr unsigned short FIRST_MAP_INDEX = 128;

unsigned short identifyIndex(Common::shared_ptr<Core::Device> device, unsigned short driveNumber) {
    for (; device; device = device->pParent()) {
        if (auto const* const controller = dynamic_cast<ArrayController const*>(device.get())) {
            if (controller->smallDrivemapSupport()) return driveNumber;
            break;
        }
    }
    return static_cast<unsigned short>(driveNumber + FIRST_MAP_INDEX);
}

}  // namespace

PhysicalDrive::PhysicalDrive(Common::string const& handle, unsigned short driveNumber, EnDriveType driveType)
    : Node(Names::PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE, ForwardDevice(), ConcreteSCSIDevice(handle),
           ConcreteATADevice(handle)),
      m_driveNumber(driveNumber) {
    publish(*this, Names::PhysicalDrive::ATTR_NAME_DEVICE_NUMBER, decimalText(driveNumber));
    publish(*this, Names::PhysicalDrive::ATTR_NAME_DRIVE_TYPE, DRIVE_TYPES[driveType]);
}

bool PhysicalDrive::identifyPhysicalDrive(Common::shared_ptr<Core::Device> device, BMICDevice& target,
                                          unsigned short const& driveNumber,
                                          Common::copy_ptr<Records::PHYSICAL_DRIVE_STATUS>& status,
                                          Core::OperationReturn& result, unsigned* received) {
    if (!result) return true;
    constexpr unsigned short LAST_NUMBER = 0xFFFF - FIRST_MAP_INDEX;
    if (driveNumber > LAST_NUMBER) {
        // Its index would wrap to that of another device.
        Common::DebugLogger::LogCommand("Device number %u refused: at most %u expected",
                                        static_cast<unsigned>(driveNumber),
                                        static_cast<unsigned>(LAST_NUMBER));
        result = Core::OperationReturn(Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_FAILURE);
        return false;
    }
    IdentifyPhysicalDrive identify(identifyIndex(device, driveNumber));
    bool const answered = DeviceCommandReturn::executeCommand(identify, target, result);
    status = identify.recordCopy();
    if (received != nullptr) *received = identify.receivedLength();
    return answered;
}

NonVaultlinePhysicalDrive::NonVaultlinePhysicalDrive(Common::string const& handle)
    : Node(Names::PhysicalDrive::ATTR_VALUE_TYPE_NON_VAULTLINE_PHYSICAL_DRIVE, ConcreteSCSIDevice(handle),
           ConcreteATADevice(handle), ConcreteCSMIDevice(handle)) {}

Common::string NonVaultlinePhysicalDrive::toStringImpl() const {
    return "NVPD:" + (m_uniqueId.empty() ? deviceKey(handle()) : m_uniqueId);
}

bool isSata(Core::Device const& drive) {
    return drive.hasAttributeAndIs(Names::PhysicalDrive::ATTR_NAME_INTERFACE,
                                   Names::PhysicalDrive::ATTR_VALUE_INTERFACE_SATA) ||
           drive.hasAttributeAndIs(Names::PhysicalDrive::ATTR_NAME_INTERFACE,
                                   Names::PhysicalDrive::ATTR_VALUE_INTERFACE_SATA_SSD);
}

TapeDrive::TapeDrive(Common::string const& handle, unsigned short driveNumber)
    : Node(Names::TapeDrive::ATTR_VALUE_TYPE_TAPE_DRIVE, ForwardDevice(), ConcreteSCSIDevice(handle)),
      m_driveNumber(driveNumber) {
    publish(*this, Names::TapeDrive::ATTR_NAME_DEVICE_NUMBER, decimalText(driveNumber));
}

}  // namespace Schema
