#include "storage/schema/logical.h"

#include "storage/vocabulary/array.h"
#include "storage/vocabulary/logical_drive.h"
#include "storage/vocabulary/mirror_group_names.h"
#include "storage/vocabulary/parity_group_names.h"

namespace Schema {

namespace Names = Interface::StorageMod;

Array::Array(unsigned short arrayNumber, LogicalDriveMap const& logicalDrives,
             PhysicalDriveMap const& dataDrives, PhysicalDriveMap const& spareDrives,
             PhysicalDriveMap const& failedDrives, EnSpareType spareType, bool isAcceleratedIOMode)
    : Node(Names::Array::ATTR_VALUE_TYPE_ARRAY, ForwardDevice()),
      m_arrayNumber(arrayNumber),
      m_logicalDrives(logicalDrives),
      m_dataDrives(dataDrives),
      m_spareDrives(spareDrives),
      m_failedDrives(failedDrives),
      m_spareType(spareType),
      m_isAcceleratedIOMode(isAcceleratedIOMode) {
    publish(*this, Names::Array::ATTR_NAME_ARRAY_NUMBER, decimalText(arrayNumber));
}

void Array::takeOver(Array const& twin) {
    m_logicalDrives = twin.m_logicalDrives;
    m_dataDrives = twin.m_dataDrives;
    m_spareDrives = twin.m_spareDrives;
    m_failedDrives = twin.m_failedDrives;
    m_spareType = twin.m_spareType;
    m_isAcceleratedIOMode = twin.m_isAcceleratedIOMode;
}

LogicalDrive::LogicalDrive(unsigned short driveNumber, Common::string const& handle)
    : Node(Names::LogicalDrive::ATTR_VALUE_TYPE_LOGICAL_DRIVE, ForwardDevice(), ConcreteSCSIDevice(handle)),
      m_driveNumber(driveNumber) {
    publish(*this, Names::LogicalDrive::ATTR_NAME_DRIVE_NUMBER, decimalText(driveNumber));
}

MirrorGroup::MirrorGroup(unsigned short groupNumber, DriveNumberList const& driveNumbers)
    : Node(Names::MirrorGroup::ATTR_VALUE_TYPE_MIRROR_GROUP),
      m_groupNumber(groupNumber),
      m_driveNumbers(driveNumbers) {
    publish(*this, Names::MirrorGroup::ATTR_NAME_MIRROR_GROUP_NUMBER, decimalText(groupNumber));
}

ParityGroup::ParityGroup(unsigned short groupNumber, DriveNumberList const& driveNumbers)
    : Node(Names::ParityGroup::ATTR_VALUE_TYPE_PARITY_GROUP),
      m_groupNumber(groupNumber),
      m_driveNumbers(driveNumbers) {
    publish(*this, Names::ParityGroup::ATTR_NAME_PARITY_GROUP_NUMBER, decimalText(groupNumber));
}

}  // namespace Schema
