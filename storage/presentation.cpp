#include "storage/presentation.h"

#include <cmath>

#include "common/conversion.h"
#include "storage/schema/identity.h"
#include "storage/vocabulary/physical_drive.h"

namespace StoragePres::PhysicalDrive {
namespace {

namespace Names = Interface::StorageMod::PhysicalDrive;

struct PlaceRow {
    char const* attribute;
    char const* word;
};

constexpr PlaceRow PLACES[] = {
    {Names::ATTR_NAME_PORT, "Port "},
    {Names::ATTR_NAME_BOX, "Box "},
    {Names::ATTR_NAME_BAY, "Bay "},
};

constexpr double USUAL_BLOCK_SIZE = 512;
constexpr double GIGABYTE = 1e9;
constexpr double GIGABYTES_OF_TERABYTE = 1000;

double numberOf(Core::Device const& device, char const* attribute) {
    return static_cast<double>(Conversion::toNumber<unsigned long long>(device.getValueFor(attribute)));
}

}  // namespace

Common::string locationHintFor(Common::shared_ptr<Core::Device> device) {
    Common::string hint;
    if (!device) return hint;
    for (PlaceRow const& place : PLACES) {
        Common::string const value = device->getValueFor(place.attribute).Trim();
        if (value.empty() || value == Names::ATTR_VALUE_PORT_UNKNOWN) continue;
        if (!hint.empty()) hint += ", ";
        hint += place.word + value;
    }
    return hint;
}

Common::string marketingBlocksFor(Core::Device& device) {
    double const blocks = numberOf(device, Names::ATTR_NAME_TOTAL_BLOCKS);
    if (blocks == 0) return Common::string();
    double const told = numberOf(device, Names::ATTR_NAME_BLOCK_SIZE);
    double const gigabytes = std::round(blocks * (told != 0 ? told : USUAL_BLOCK_SIZE) / GIGABYTE);
    if (gigabytes < GIGABYTES_OF_TERABYTE) {
        return Schema::decimalText(static_cast<unsigned long long>(gigabytes)) + " GB";
    }
    auto const tenths = static_cast<unsigned long long>(std::round(gigabytes / (GIGABYTES_OF_TERABYTE / 10)));
    Common::string text = Schema::decimalText(tenths / 10);
    if (tenths % 10 != 0) text += "." + Schema::decimalText(tenths % 10);
    return text + " TB";
}

}  // namespace StoragePres::PhysicalDrive
