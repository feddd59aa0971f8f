#pragma once

#include "core/named_operation.h"
#include "flash/controller_filters.h"
#include "flash/vocabulary.h"
#include "storage/schema/visitors.h"

namespace Operations {

/// Pauses or resumes what a device does in the background. Takes ATTR_NAME_BACKGROUND_ACTIVITY_STATE; on an
/// array controller also ATTR_NAME_DISABLE_HOTPLUG_EVENTS, which is on unless told otherwise, and any other
/// value of the state than its two sends nothing. Elsewhere any other value than DISABLE resumes.
/// A success whatever the device says, but for a missing argument.
class WriteBackgroundActivity
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_SET_BACKGROUND_ACTIVITY_STATE,
                                  Core::DeviceOperation::eWrite, FilterBackgroundActivity,
                                  Schema::VisitorArrayController, Schema::VisitorHostBusAdapter,
                                  Schema::VisitorNonVaultlinePhysicalDrive, Schema::VisitorSEP> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    /// An adapter's handle names no device behind it, and only such a one can be paused: nothing goes out.
    Core::OperationReturn visit(Schema::HostBusAdapter& adapter) override;
    Core::OperationReturn visit(Schema::NonVaultlinePhysicalDrive& drive) override;
    Core::OperationReturn visit(Schema::SEP& sep) override;
};

}  // namespace Operations
