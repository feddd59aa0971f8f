#pragma once

#include "command/records/all_records.h"
#include "common/compound_list.h"
#include "core/device.h"
#include "storage/operations/adapter_properties.h"

namespace Operations {

/// The key under which a controller keeps its identity across discoveries: "SLOT_" and the slot; without
/// one "DBDF_" and its place on the bus; without that the decimal CRC-32 of its handle. `taken` are the keys
/// given out in this discovery: of two controllers in one slot, the second goes on to the next kind of key.
Common::string locationKeyOf(AdapterProperties const& adapter, Common::CompoundList const& taken);

/// Publishes what adapter discovery knows of a controller, its name included.
void publishAdapterProperties(Core::Device& device, AdapterProperties const& adapter);

/// Whether the record reaches behind bControllerMode: a record of a firmware that predates a member has no
/// such member, whatever the buffer then holds.
bool isControllerModeValid(Records::IDENTIFY_CONTROLLER const& identify);
bool isEvenMoreControllerFlagsValid(Records::IDENTIFY_CONTROLLER const& identify);

/// The controller runs as an array controller, as opposed to a plain adapter.
bool isVaultlineMode(Records::IDENTIFY_CONTROLLER const& identify);

/// The printable name of a controller's model, or a general one.
Common::string ArrayControllerMarketingNameFor(Core::Device* device);

}  // namespace Operations
