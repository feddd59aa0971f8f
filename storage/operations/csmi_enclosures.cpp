#include "storage/operations/csmi_enclosures.h"

#include <algorithm>

#include "command/passing_condition.h"
#include "command/scsi/enclosure_commands.h"
#include "command/scsi/inquiry_commands.h"
#include "common/debug_logger.h"
#include "storage/operations/physical_device_iterator.h"

namespace Operations {
namespace {

/// A processor that was reset a moment ago refuses the first command once.
Common::string chassisSerialNumber(SCSIDevice& processor) {
    constexpr unsigned TRIES = 3;
    ReadChassisSerialNumber chassis;
    for (unsigned i = 0; i < TRIES; ++i) {
        if (chassis(processor)) return chassis.serialNumber();
        if (!isPassingCondition(chassis.bSenseKey(), chassis.bASC())) break;
    }
    return Common::string();
}

}  // namespace

std::vector<CsmiEnclosure> csmiEnclosures(ConcreteSCSIDevice const& adapter) {
    constexpr std::size_t MOST_BOXES = 255;
    std::vector<CsmiEnclosure> boxes;
    PhysicalDeviceIterator const devices(adapter);
    constexpr unsigned char TYPE = PhysicalDeviceIterator::SEP_TYPE;
    for (auto handle = devices.begin(TYPE); handle != devices.end(TYPE); ++handle) {
        ConcreteSCSIDevice processor(*handle);
        ReportStandardInquiry inquiry;
        inquiry(processor);  // one that doesn't answer is there all the same, without texts
        Common::string const serial = chassisSerialNumber(processor);
        auto const known = std::find_if(boxes.begin(), boxes.end(), [&](CsmiEnclosure const& box) {
            return !serial.empty() && box.serialNumber == serial;
        });
        if (known != boxes.end()) {
            known->seps.push_back(*handle);
        } else if (boxes.size() < MOST_BOXES) {
            boxes.push_back({static_cast<unsigned char>(boxes.size() + 1),
                             serial,
                             inquiry.vendorId(),
                             inquiry.productId(),
                             inquiry.productRevision(),
                             {*handle}});
        } else {
            Common::DebugLogger::LogCommand(
                "A box behind an adapter refused: %u boxes are known, no more "
                "are expected",
                static_cast<unsigned>(MOST_BOXES));
        }
    }
    return boxes;
}

}  // namespace Operations
