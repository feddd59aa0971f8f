#include "command/scsi/inquiry_commands.h"

#include <algorithm>

#include "command/endian.h"
#include "common/conversion.h"

namespace {

constexpr std::size_t PAGE_HEADER = 4;

// A designator's header (SPC, 7.7.6): code set, association and type, reserved, length.
constexpr std::size_t DESIGNATOR_HEADER = 4;
constexpr unsigned char ASSOCIATION_AND_TYPE = 0x3F;
/// Of the logical unit (association 0), an NAA identifier (type 3).
constexpr unsigned char NAA_OF_THE_UNIT = 0x03;

}  // namespace

std::size_t SCSIReadVPDPage::pageEnd() const {
    if (receivedLength() < PAGE_HEADER) return 0;
    return std::min(data().size(), PAGE_HEADER + readBigEndian<std::uint16_t>(&data()[2]));
}

Common::string VPDPage80::serialNumber() const {
    std::size_t const end = pageEnd();
    return end > PAGE_HEADER ? text(PAGE_HEADER, end - PAGE_HEADER) : Common::string();
}

Common::string VPDPage83::identifier() const {
    std::size_t const end = std::min(pageEnd(), receivedLength());
    for (std::size_t at = PAGE_HEADER; at + DESIGNATOR_HEADER <= end;) {
        std::size_t const length = byte(at + 3);
        std::size_t const value = at + DESIGNATOR_HEADER;
        if ((byte(at + 1) & ASSOCIATION_AND_TYPE) == NAA_OF_THE_UNIT && length != 0 &&
            value + length <= end) {
            return Conversion::arrayToString(&data()[value], static_cast<unsigned int>(length), "");
        }
        at = value + length;
    }
    return Common::string();
}
