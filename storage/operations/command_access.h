#pragma once

#include "command/devices.h"
#include "core/named_operation.h"
#include "storage/vocabulary/device_names.h"
#include "storage/vocabulary/operations.h"

class ATACommand;
class BmicCommand;
class ScsiCommand;

namespace Operations {

/// Admits the devices that take commands of a kind.
template <class Target>
class FilterTarget : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Runs a command that the caller made: the argument named `Argument` holds its address, borrowed, as decimal
/// text, as all addresses travel. Works on every device that is a Target. A missing argument is
/// ATTR_VALUE_STATUS_ARGUMENT_MISSING, an address of 0 or no number ATTR_VALUE_STATUS_ARGUMENT_INVALID.
/// Listed by a reenumeration, which never runs it.
template <char const* const& Name, Core::DeviceOperation::EnType Type, class Command, class Target,
          char const* const& Argument>
class CommandOperation : public Core::NamedOperation<Name, Type, FilterTarget<Target>> {
  public:
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Core::Device& device) override;

  protected:
    CommandOperation()
        : Core::NamedOperation<Name, Type, FilterTarget<Target>>(Core::DeviceOperation::eNever) {}
};

class ReadBMICCommand : public CommandOperation<Interface::StorageMod::OPERATION_READ_BMIC_COMMAND,
                                                Core::DeviceOperation::eRead, BmicCommand, BMICDevice,
                                                Interface::StorageMod::Device::ATTR_NAME_BMIC_COMMAND> {};

class WriteBMICCommand : public CommandOperation<Interface::StorageMod::OPERATION_WRITE_BMIC_COMMAND,
                                                 Core::DeviceOperation::eWrite, BmicCommand, BMICDevice,
                                                 Interface::StorageMod::Device::ATTR_NAME_BMIC_COMMAND> {};

class ReadSCSICommand : public CommandOperation<Interface::StorageMod::OPERATION_READ_SCSI_COMMAND,
                                                Core::DeviceOperation::eRead, ScsiCommand, SCSIDevice,
                                                Interface::StorageMod::Device::ATTR_NAME_SCSI_COMMAND> {};

class WriteSCSICommand : public CommandOperation<Interface::StorageMod::OPERATION_WRITE_SCSI_COMMAND,
                                                 Core::DeviceOperation::eWrite, ScsiCommand, SCSIDevice,
                                                 Interface::StorageMod::Device::ATTR_NAME_SCSI_COMMAND> {};

/// The outcome is told with the result registers, all that an ATA command has.
class SendATACommand : public CommandOperation<Interface::StorageMod::OPERATION_SEND_ATA_COMMAND,
                                               Core::DeviceOperation::eWrite, ATACommand, ATADevice,
                                               Interface::StorageMod::Device::ATTR_NAME_ATA_COMMAND> {};

}  // namespace Operations
