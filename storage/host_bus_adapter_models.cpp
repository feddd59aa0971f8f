#include "storage/host_bus_adapter_models.h"

#include "core/constant_text.h"

namespace Interface::StorageMod {

namespace HostBusAdapter {
KSL_TEXT_CONSTANT(ATTR_VALUE_HBA_NAME_WILLOW8E);
KSL_TEXT_CONSTANT(ATTR_VALUE_HBA_NAME_WILLOW4I);
KSL_TEXT_CONSTANT(ATTR_VALUE_HBA_NAME_WILLOW4E4I);
KSL_TEXT_CONSTANT(ATTR_VALUE_HBA_NAME_SPRUCE8);
}  // namespace HostBusAdapter

namespace {

constexpr HostBusAdapterModel MODELS[] = {
    {0x1E5C3601, HostBusAdapter::ATTR_VALUE_HBA_NAME_WILLOW8E, "VQ SH208 External Host Bus Adapter"},
    {0x1E5C3602, HostBusAdapter::ATTR_VALUE_HBA_NAME_WILLOW4I, "VQ SH204i Internal Host Bus Adapter"},
    {0x1E5C3603, HostBusAdapter::ATTR_VALUE_HBA_NAME_WILLOW4E4I, "VQ SH244 Host Bus Adapter"},
    {0x1E5C3604, HostBusAdapter::ATTR_VALUE_HBA_NAME_SPRUCE8, "VQ SH308 Host Bus Adapter"},
};

}  // namespace

std::span<HostBusAdapterModel const> hostBusAdapterModels() {
    return MODELS;
}

}  // namespace Interface::StorageMod
