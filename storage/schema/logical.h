#pragma once

#include "command/concrete_devices.h"
#include "storage/schema/drive_map.h"
#include "storage/schema/forward_device.h"
#include "storage/schema/node.h"

// The logical side of a controller.

namespace Schema {

/// Physical drives that hold the same logical drives.
class Array : public Node<Array, Core::DeviceComposite, 33, ForwardDevice> {
  public:
    /// What its spares do: nothing, stand by for it, or take a failed drive's place for good.
    enum EnSpareType { eNoSpares, eDedicated, eAutoReplace };

    Array(unsigned short arrayNumber, LogicalDriveMap const& logicalDrives,
          PhysicalDriveMap const& dataDrives, PhysicalDriveMap const& spareDrives,
          PhysicalDriveMap const& failedDrives, EnSpareType spareType = eNoSpares,
          bool isAcceleratedIOMode = false);

    LogicalDriveMap const& logicalDriveMap() const { return m_logicalDrives; }
    PhysicalDriveMap const& dataDriveList() const { return m_dataDrives; }
    PhysicalDriveMap const& spareDriveList() const { return m_spareDrives; }
    PhysicalDriveMap const& failedDriveList() const { return m_failedDrives; }
    EnSpareType spareType() const { return m_spareType; }
    /// The host's driver reaches the drives past the controller's firmware.
    bool isAcceleratedIOMode() const { return m_isAcceleratedIOMode; }
    /// No longer among what the controller tells, or without a logical drive left.
    bool isDeleted() const { return !isValid() || !m_logicalDrives.any(); }

  protected:
    Common::string toStringImpl() const override { return "ARR:" + decimalText(m_arrayNumber); }
    void takeOver(Array const& twin) override;

  private:
    unsigned short m_arrayNumber;
    LogicalDriveMap m_logicalDrives;
    PhysicalDriveMap m_dataDrives;
    PhysicalDriveMap m_spareDrives;
    PhysicalDriveMap m_failedDrives;
    EnSpareType m_spareType;
    bool m_isAcceleratedIOMode;
};

class LogicalDrive : public Node<LogicalDrive, Core::DeviceComposite, 33, ForwardDevice, ConcreteSCSIDevice> {
  public:
    LogicalDrive(unsigned short driveNumber, Common::string const& handle);

    unsigned short logicalDriveNumber() const { return m_driveNumber; }

  protected:
    Common::string toStringImpl() const override { return "LD:" + decimalText(m_driveNumber); }

  private:
    unsigned short m_driveNumber;
};

/// Numbers of physical drives, in the order that the group has them.
using DriveNumberList = Common::list<unsigned short>;

/// Drives of a logical drive that hold the same data.
class MirrorGroup : public Node<MirrorGroup, Core::DeviceComposite, 1> {
  public:
    MirrorGroup(unsigned short groupNumber, DriveNumberList const& driveNumbers);

    DriveNumberList const& driveNumberList() const { return m_driveNumbers; }

  protected:
    Common::string toStringImpl() const override { return "MG:" + decimalText(m_groupNumber); }
    void takeOver(MirrorGroup const& twin) override { m_driveNumbers = twin.m_driveNumbers; }

  private:
    unsigned short m_groupNumber;
    DriveNumberList m_driveNumbers;
};

/// Drives of a logical drive with a parity of their own.
class ParityGroup : public Node<ParityGroup, Core::DeviceComposite, 1> {
  public:
    ParityGroup(unsigned short groupNumber, DriveNumberList const& driveNumbers);

    DriveNumberList const& driveNumberList() const { return m_driveNumbers; }

  protected:
    Common::string toStringImpl() const override { return "PG:" + decimalText(m_groupNumber); }
    void takeOver(ParityGroup const& twin) override { m_driveNumbers = twin.m_driveNumbers; }

  private:
    unsigned short m_groupNumber;
    DriveNumberList m_driveNumbers;
};

}  // namespace Schema
