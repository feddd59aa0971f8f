#pragma once

#include "core/constant_text.h"
#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/host_bus_adapter_names.h"

namespace Interface::StorageMod::HostBusAdapter {

KSL_TEXT_CONSTANT(ATTR_VALUE_ADAPTER_TYPE_CSMI_HBA);
KSL_TEXT_CONSTANT(ATTR_VALUE_ADAPTER_TYPE_GENERIC_HBA);
KSL_TEXT_CONSTANT(ATTR_VALUE_BUS_TYPE_PCI);
KSL_TEXT_CONSTANT(ATTR_VALUE_SLOT_UNKNOWN);
KSL_TEXT_CONSTANT(ATTR_VALUE_STATUS_OK);

// Published beside the class's own names, as an array controller's are.
KSL_TEXT_CONSTANT(ATTR_NAME_FIRMWARE_VERSION);
KSL_TEXT_CONSTANT(ATTR_NAME_OPTION_ROM_VERSION);
KSL_TEXT_CONSTANT(ATTR_NAME_SERIAL_NUMBER);

}  // namespace Interface::StorageMod::HostBusAdapter
