#pragma once

#include "command/concrete_devices.h"
#include "command/records/all_records.h"
#include "common/copy_ptr.h"
#include "storage/schema/forward_device.h"
#include "storage/schema/node.h"

namespace Schema {

/// A drive behind an array controller, known by its BMIC index.
class PhysicalDrive : public Node<PhysicalDrive, Core::DeviceComposite, 129, ForwardDevice,
                                  ConcreteSCSIDevice, ConcreteATADevice> {
  public:
    /// What the controller's configuration uses it for, told as ATTR_NAME_DRIVE_TYPE.
    enum EnDriveType { eData, eSpare, eUnassigned, eCache };

    PhysicalDrive(Common::string const& handle, unsigned short driveNumber, EnDriveType driveType);

    unsigned short physicalDriveNumber() const { return m_driveNumber; }

    /// Asks the controller behind `target` to identify the drive `driveNumber`. `device` is the drive, or
    /// any device below or at the controller: what is above it tells how the controller counts. `status` is
    /// the reply, of which `received` bytes came; both untouched when nothing was sent, because `result` had
    /// failed before. The return value is DeviceCommandReturn::executeCommand's.
    static bool identifyPhysicalDrive(Common::shared_ptr<Core::Device> device, BMICDevice& target,
                                      unsigned short const& driveNumber,
                                      Common::copy_ptr<Records::PHYSICAL_DRIVE_STATUS>& status,
                                      Core::OperationReturn& result, unsigned* received = nullptr);

    // Attribute values for the codes of the identify record.

    /// ATTR_VALUE_INTERFACE_... of a device type code.
    static Common::string interfaceType(unsigned char const& deviceType);
    /// The same, and whether the drive is solid-state: it says so, or tells a rotation rate of 1.
    static Common::string interfaceTypeEx(Common::copy_ptr<Records::PHYSICAL_DRIVE_STATUS> status);
    /// ATTR_VALUE_LAST_FAILURE_REASON_...
    static Common::string lastFailureReason(unsigned char const& reason);
    /// ATTR_VALUE_NEGOTIATED_LINK_RATE_... of a phy; the codes are those of SAS (SPL, negotiated logical
    /// link rate).
    static Common::string negotiatedLinkRate(unsigned char const& rate);

  protected:
    Common::string toStringImpl() const override { return "PD:" + decimalText(m_driveNumber); }

  private:
    unsigned short m_driveNumber;
};

/// A drive behind a plain adapter. Before discovery has read what the drive says of itself, its handle tells
/// it from others.
class NonVaultlinePhysicalDrive : public Node<NonVaultlinePhysicalDrive, Core::DeviceComposite, 129,
                                              ConcreteSCSIDevice, ConcreteATADevice, ConcreteCSMIDevice> {
  public:
    explicit NonVaultlinePhysicalDrive(Common::string const& handle);

    /// What the drive says of itself: its world wide name. Empty before SetUniqueID.
    Common::string UniqueID() const { return m_uniqueId; }
    /// Call it before the drive is offered to a parent: it is its identity from then on.
    void SetUniqueID(Common::string const& uniqueId) { m_uniqueId = uniqueId; }

  protected:
    Common::string toStringImpl() const override;
    void takeOver(NonVaultlinePhysicalDrive const& twin) override { m_uniqueId = twin.m_uniqueId; }

  private:
    Common::string m_uniqueId;
};

/// Whether a drive's interface is ATTR_VALUE_INTERFACE_SATA or _SATA_SSD.
bool isSata(Core::Device const& drive);

/// A tape drive behind an array controller.
class TapeDrive : public Node<TapeDrive, Core::Device, 129, ForwardDevice, ConcreteSCSIDevice> {
  public:
    TapeDrive(Common::string const& handle, unsigned short driveNumber);

  protected:
    Common::string toStringImpl() const override { return "TD:" + decimalText(m_driveNumber); }

  private:
    unsigned short m_driveNumber;
};

}  // namespace Schema
