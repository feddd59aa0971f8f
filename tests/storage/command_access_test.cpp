// Raw commands of a caller, on devices that take one kind of them or another.

#include "storage/operations/command_access.h"

#include "command/ata_command.h"
#include "command/scsi_command.h"
#include "core/device_composite.h"
#include "tests/command/fakes.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using namespace command_test;

/// Takes SCSI and ATA commands, no management commands.
class Drive : public Core::DeviceComposite, public FakeSCSIDevice, public ATADevice {
  public:
    bool sendATACommand(ATARequest& request) const override {
        ++ataCommands;
        unsigned char const registers[8] = {0x51, 0x04, 0xAB, 0x00, 0xCD, 0xEF, 0x40, 0x04};
        std::memcpy(request.resultRegisters, registers, sizeof registers);
        return ataSucceeds;
    }
    bool ataSucceeds = true;
    mutable unsigned ataCommands = 0;

  protected:
    Common::string toStringImpl() const override { return "DRIVE"; }
    Common::shared_ptr<Core::Device> cloneImpl() const override { return {}; }
    Core::OperationReturn performImpl(Core::VisitorDevice&) override { return Core::OperationReturn(); }
};

class Scsi : public ScsiCommand {
    bool sendCommand(SCSIDevice& device, SCSIRequest& request) override {
        return device.sendSCSICommand(request);
    }
};

class Ata : public ATACommand {
    bool sendCommand(ATADevice& device, ATARequest& request) override {
        return device.sendATACommand(request);
    }
};

template <class Pointer>
Common::string addressOf(Pointer* command) {
    return std::to_string(reinterpret_cast<std::uintptr_t>(command)).c_str();
}

class RawAccess : public ::testing::Test {
  protected:
    Core::OperationReturn perform(Core::DeviceOperation* operation, char const* argument,
                                  Common::string const& address) {
        OperationPointer const owner(operation);
        owner->SetArgument(Core::DeviceOperation::eSET, argument, address);
        return drive->perform(owner);
    }

    Drive* fake = new Drive;
    DevicePointer drive{fake};
    Scsi scsi;
    Ata ata;
};

TEST_F(RawAccess, SendsTheCommandAndTellsItsOutcome) {
    fake->script = Script({Answer{}, checkCondition(5, 0x20, 7)});
    EXPECT_TRUE(perform(new Operations::ReadSCSICommand, "ATTR_NAME_SCSI_COMMAND", addressOf(&scsi)));
    auto const refused =
        perform(new Operations::WriteSCSICommand, "ATTR_NAME_SCSI_COMMAND", addressOf(&scsi));
    EXPECT_EQ(2U, fake->sent.size());
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE", status(refused));
    EXPECT_EQ("5", attribute(refused, "ATTR_NAME_SCSI_SENSE_KEY"));
    EXPECT_EQ("32", attribute(refused, "ATTR_NAME_SCSI_ASC"));

    auto const good = perform(new Operations::SendATACommand, "ATTR_NAME_ATA_COMMAND", addressOf(&ata));
    EXPECT_EQ("ATTR_VALUE_STATUS_SUCCESS", status(good));
    EXPECT_EQ("51 04 AB 00 CD EF 40 04", attribute(good, "ATTR_NAME_ATA_RESULT_REGISTERS"));
    fake->ataSucceeds = false;
    auto const bad = perform(new Operations::SendATACommand, "ATTR_NAME_ATA_COMMAND", addressOf(&ata));
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE", status(bad));
    EXPECT_EQ("51 04 AB 00 CD EF 40 04", attribute(bad, "ATTR_NAME_ATA_RESULT_REGISTERS"));
    EXPECT_EQ(2U, fake->ataCommands);
}

TEST_F(RawAccess, RefusesWhatIsNoCommandOfItsKind) {
    struct Row {
        Core::DeviceOperation* operation;
        char const* argument;
        char const* address;
        char const* status;
        char const* wanted;  // argument that is named
    };
    Row const rows[] = {
        {new Operations::ReadSCSICommand, "ATTR_NAME_ATA_COMMAND", "1", "ATTR_VALUE_STATUS_ARGUMENT_MISSING",
         "ATTR_NAME_SCSI_COMMAND"},
        {new Operations::WriteSCSICommand, "ATTR_NAME_SCSI_COMMAND", "0",
         "ATTR_VALUE_STATUS_ARGUMENT_INVALID", "ATTR_NAME_SCSI_COMMAND"},
        {new Operations::SendATACommand, "ATTR_NAME_SCSI_COMMAND", "1", "ATTR_VALUE_STATUS_ARGUMENT_MISSING",
         "ATTR_NAME_ATA_COMMAND"},
        {new Operations::SendATACommand, "ATTR_NAME_ATA_COMMAND", "x", "ATTR_VALUE_STATUS_ARGUMENT_INVALID",
         "ATTR_NAME_ATA_COMMAND"},
        {new Operations::ReadSCSICommand, "ATTR_NAME_SCSI_COMMAND", "64x",
         "ATTR_VALUE_STATUS_ARGUMENT_INVALID", "ATTR_NAME_SCSI_COMMAND"},
        {new Operations::ReadSCSICommand, "ATTR_NAME_SCSI_COMMAND", "-64",
         "ATTR_VALUE_STATUS_ARGUMENT_INVALID", "ATTR_NAME_SCSI_COMMAND"},
        {new Operations::ReadSCSICommand, "ATTR_NAME_SCSI_COMMAND", "18446744073709551680",
         "ATTR_VALUE_STATUS_ARGUMENT_INVALID", "ATTR_NAME_SCSI_COMMAND"},
        {new Operations::ReadBMICCommand, "ATTR_NAME_BMIC_COMMAND", "64",
         "ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE", ABSENT},
    };
    for (Row const& row : rows) {
        auto const result = perform(row.operation, row.argument, row.address);
        EXPECT_EQ(row.status, status(result));
        EXPECT_EQ(row.wanted, attribute(result, "ATTR_NAME_ARGUMENT_NAME"));
    }
    EXPECT_EQ(0U, fake->sent.size() + fake->ataCommands);
    EXPECT_TRUE(Operations::SendATACommand().pFilter()->apply(drive));
    EXPECT_FALSE(Operations::WriteBMICCommand().pFilter()->apply(drive));
    EXPECT_EQ(Core::DeviceOperation::eNever, Operations::WriteSCSICommand().typeModifier());
}

}  // namespace
}  // namespace storage_test
