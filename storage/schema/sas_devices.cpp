#include "storage/schema/sas_devices.h"

#include "common/conversion.h"
#include "storage/vocabulary/expander.h"
#include "storage/vocabulary/phy.h"
#include "storage/vocabulary/sep.h"
#include "sysmod/device_handle.h"

namespace Schema {
namespace {

namespace Names = Interface::StorageMod;

struct SepTypeRow {
    unsigned char code;
    char const* type;
    bool zones;
    bool staticZones;
};

constexpr SepTypeRow SEP_TYPES[] = {
    {1, Names::SEP::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, false, false},
    {2, Names::SEP::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, false, false},
    {3, Names::SEP::ATTR_VALUE_SEP_TYPE_EXPANDER_CARD, false, false},
    {4, Names::SEP::ATTR_VALUE_SEP_TYPE_SAS_SWITCH, true, false},
    {5, Names::SEP::ATTR_VALUE_SEP_TYPE_ZONED_ENCLOSURE, true, true},
};

SepTypeRow const* typeOf(SEP const& sep) {
    for (SepTypeRow const& row : SEP_TYPES) {
        if (sep.hasAttributeAndIs(Names::SEP::ATTR_NAME_SEP_TYPE, row.type)) return &row;
    }
    return nullptr;
}

unsigned short indexOf(Core::Device const& device, char const* attribute, Common::string const& handle) {
    if (device.hasAttribute(attribute)) {
        return Conversion::toNumber<unsigned short>(device.getValueFor(attribute));
    }
    Core::SysMod::PropertyTable table;
    Core::SysMod::toPropertyTable(handle, table);
    return table[Core::SysMod::DeviceIndex].empty() ? NO_BMIC_INDEX : Core::SysMod::getDeviceIndex(handle);
}

Common::string identifierOf(char const* prefix, Core::Device const& device, char const* attribute,
                            Common::string const& handle) {
    Common::string identifier = prefix + deviceKey(handle);
    if (device.hasAttribute(attribute)) identifier += "_" + device.getValueFor(attribute);
    return identifier;
}

}  // namespace

SEP::SEP(Common::string const& handle)
    : Node(Names::SEP::ATTR_VALUE_TYPE_SEP, ForwardDevice(), ConcreteSCSIDevice(handle),
           ConcreteCSMIDevice(handle)) {}

unsigned short SEP::bmicIndex() const {
    return indexOf(*this, Names::SEP::ATTR_NAME_DEVICE_NUMBER, handle());
}

bool SEP::SupportSEPZoning() const {
    SepTypeRow const* const row = typeOf(*this);
    return row != nullptr && row->zones;
}

bool SEP::SupportsStaticZoningModes() const {
    SepTypeRow const* const row = typeOf(*this);
    return row != nullptr && row->staticZones;
}

Common::string SEP::sepType(unsigned char const& code) {
    for (SepTypeRow const& row : SEP_TYPES) {
        if (row.code == code) return row.type;
    }
    return Names::SEP::ATTR_VALUE_SEP_TYPE_UNKNOWN;
}

Common::string SEP::toStringImpl() const {
    return identifierOf("SEP:", *this, Names::SEP::ATTR_NAME_DEVICE_NUMBER, handle());
}

Expander::Expander(Common::string const& handle)
    : Node(Names::Expander::ATTR_VALUE_TYPE_EXPANDER, ForwardDevice(), ConcreteSCSIDevice(handle)) {}

unsigned short Expander::bmicIndex() const {
    return indexOf(*this, Names::Expander::ATTR_NAME_DEVICE_NUMBER, handle());
}

Common::string Expander::toStringImpl() const {
    return identifierOf("EXP:", *this, Names::Expander::ATTR_NAME_DEVICE_NUMBER, handle());
}

Phy::Phy(unsigned short number) : Node(Names::Phy::ATTR_VALUE_TYPE_PHY, ForwardDevice()), m_number(number) {
    publish(*this, Names::Phy::ATTR_NAME_PHY_NUMBER, decimalText(number));
}

}  // namespace Schema
