#include "storage/schema/code_table.h"
#include "storage/schema/drives.h"
#include "storage/vocabulary/phy.h"
#include "storage/vocabulary/physical_drive.h"

namespace Schema {
namespace {

using namespace Interface::StorageMod::PhysicalDrive;
namespace Phys = Interface::StorageMod::Phy;

// A medium rotation rate that stands for no rotation, in SCSI (SBC) as in ATA.
constexpr unsigned NON_ROTATING = 1;

constexpr CodeRow INTERFACES[] = {
    {0, ATTR_VALUE_INTERFACE_PARALLEL_SCSI}, {1, ATTR_VALUE_INTERFACE_SATA},    {2, ATTR_VALUE_INTERFACE_SAS},
    {3, ATTR_VALUE_INTERFACE_SATA_SSD},      {4, ATTR_VALUE_INTERFACE_SAS_SSD},
};

constexpr CodeRow LAST_FAILURE_REASONS[] = {
    {0, ATTR_VALUE_LAST_FAILURE_REASON_NONE},
    {1, ATTR_VALUE_LAST_FAILURE_REASON_TOO_SMALL},
    {2, ATTR_VALUE_LAST_FAILURE_REASON_CONFIGURATION_UNREADABLE},
    {3, ATTR_VALUE_LAST_FAILURE_REASON_WRITE_PROTECTED},
    {4, ATTR_VALUE_LAST_FAILURE_REASON_NOT_READY},
    {5, ATTR_VALUE_LAST_FAILURE_REASON_HARDWARE_ERROR},
    {6, ATTR_VALUE_LAST_FAILURE_REASON_MEDIA_ERROR},
    {7, ATTR_VALUE_LAST_FAILURE_REASON_ABORTED_COMMANDS},
    {8, ATTR_VALUE_LAST_FAILURE_REASON_TIMEOUT},
    {9, ATTR_VALUE_LAST_FAILURE_REASON_REMOVED},
    {10, ATTR_VALUE_LAST_FAILURE_REASON_BUS_FAULTS},
    {11, ATTR_VALUE_LAST_FAILURE_REASON_SPIN_UP_FAILED},
    {12, ATTR_VALUE_LAST_FAILURE_REASON_FORMAT_FAILED},
    {13, ATTR_VALUE_LAST_FAILURE_REASON_PREDICTED_FAILURE},
    {14, ATTR_VALUE_LAST_FAILURE_REASON_OVERHEATED},
    {15, ATTR_VALUE_LAST_FAILURE_REASON_AUTHENTICATION_FAILED},
    {16, ATTR_VALUE_LAST_FAILURE_REASON_FORCED_BY_USER},
};

constexpr CodeRow LINK_RATES[] = {
    {0x1, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_DISABLED},
    {0x2, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_PHY_RESET_PROBLEM},
    {0x3, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_SPINUP_HOLD},
    {0x4, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_PORT_SELECTOR},
    {0x5, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_RESET_IN_PROGRESS},
    {0x6, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_UNSUPPORTED_PHY_ATTACHED},
    {0x8, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_1_5_GBPS},
    {0x9, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_3_0_GBPS},
    {0xA, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_6_0_GBPS},
    {0xB, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_12_0_GBPS},
    {0xC, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_22_5_GBPS},
};

}  // namespace

Common::string PhysicalDrive::interfaceType(unsigned char const& deviceType) {
    return valueOf(INTERFACES, deviceType, ATTR_VALUE_INTERFACE_UNKNOWN);
}

Common::string PhysicalDrive::interfaceTypeEx(Common::copy_ptr<Records::PHYSICAL_DRIVE_STATUS> status) {
    if (!status) return ATTR_VALUE_INTERFACE_UNKNOWN;
    Common::string const type = interfaceType(status->bDeviceType);
    if (status->dwRPM == NON_ROTATING) {
        if (type == ATTR_VALUE_INTERFACE_SAS) return ATTR_VALUE_INTERFACE_SAS_SSD;
        if (type == ATTR_VALUE_INTERFACE_SATA) return ATTR_VALUE_INTERFACE_SATA_SSD;
    }
    return type;
}

Common::string PhysicalDrive::lastFailureReason(unsigned char const& reason) {
    return valueOf(LAST_FAILURE_REASONS, reason, ATTR_VALUE_LAST_FAILURE_REASON_UNKNOWN);
}

Common::string PhysicalDrive::negotiatedLinkRate(unsigned char const& rate) {
    return valueOf(LINK_RATES, rate, Phys::ATTR_VALUE_NEGOTIATED_LINK_RATE_UNKNOWN);
}

}  // namespace Schema
