// Management commands of a device below a controller go up to it, while everything between is in the tree.

#include "storage/schema/forward_device.h"

#include "storage/schema/array_controller.h"
#include "storage/schema/drives.h"
#include "storage/schema/enclosure.h"
#include "storage/schema/external_devices.h"
#include "storage/schema/mod_root.h"
#include "storage/schema/sas_devices.h"
#include "tests/command/fakes.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using namespace Schema;

/// Stands where a controller does, and remembers what it was sent.
class FakeController : public Core::DeviceComposite, public command_test::FakeBMICDevice {
  public:
    Common::string toStringImpl() const override { return "FAKE"; }
    Core::OperationReturn performImpl(Core::VisitorDevice&) override { return Core::OperationReturn(); }
    Common::shared_ptr<Core::Device> cloneImpl() const override { return {}; }
    Common::shared_ptr<Core::Device> getDevicePtr() const override { return self; }

    DevicePointer self;
};

class Forwarding : public ::testing::Test {
  protected:
    Forwarding() {
        DevicePointer* const levels[] = {&controller, &enclosure, &cage, &drive, &phy};
        fake->self = controller;
        fake->remote = true;
        fake->logicalUnits = 0x1234;
        fake->physicalUnits = 0x0200;
        for (unsigned i = 1; i < 5; ++i)
            (*levels[i - 1])->receive(*levels[i]);
    }
    ~Forwarding() override { fake->self = DevicePointer(); }

    bool reaches(DevicePointer const& device) {
        auto* const target = dynamic_cast<BMICDevice*>(device.get());
        unsigned char sense[32] = {};
        command_test::BMICRequest request;
        request.senseBuffer = sense;
        request.senseLength = sizeof sense;
        std::size_t const before = fake->sent.size();
        bool const sent = target->sendBMICCommand(request);
        EXPECT_EQ(sent, fake->sent.size() == before + 1);
        EXPECT_EQ(sent ? 0x1234 : 0, target->maxLogicalUnits());
        EXPECT_EQ(sent ? 0x0200 : 0, target->maxPhysicalUnits());
        EXPECT_EQ(sent, target->isRemote());
        return sent;
    }

    FakeController* fake = new FakeController;
    DevicePointer controller{fake};
    DevicePointer enclosure{new StorageEnclosure(1, "", "", 0x11)};
    DevicePointer cage{new DriveCage(0, 1, "1I", PhysicalDriveMap())};
    DevicePointer drive{new PhysicalDrive("", 4, PhysicalDrive::eData)};
    DevicePointer phy{new Phy(0)};
};

TEST_F(Forwarding, GoesUpThroughAllLevels) {
    for (DevicePointer const& device : {enclosure, cage, drive, phy})
        EXPECT_TRUE(reaches(device)) << device->toString().c_str();
    auto* const low = dynamic_cast<BMICDevice*>(phy.get());
    low->WriteSizeToCacheFor(0x11, 700);
    EXPECT_EQ(700U, fake->readSizeFromCacheFor(0x11));
    EXPECT_EQ(700U, low->readSizeFromCacheFor(0x11));
}

TEST_F(Forwarding, EndsWhereTheTreeDoes) {
    EXPECT_FALSE(reaches(DevicePointer(new Phy(3)))) << "no parent";
    DevicePointer const unmanaged(new ExternalArrayController("X"));
    DevicePointer const below(new Phy(4));
    unmanaged->receive(below);
    EXPECT_FALSE(reaches(below)) << "a parent that takes no management commands";
    controller->clear(enclosure);
    EXPECT_FALSE(reaches(enclosure)) << "taken out of the tree";
    EXPECT_FALSE(reaches(cage)) << "below what was taken out";
    EXPECT_FALSE(reaches(phy)) << "the parent is stale";
}

/// The controller's maps tell how an identify command counts drives.
TEST_F(Forwarding, IdentifiesADriveByTheIndexThatItsControllerUses) {
    struct Row {
        unsigned short physicalUnits;
        unsigned short drive;
        unsigned details;
        unsigned unit;
    };
    static Row const rows[] = {{32, 5, 0x05000000, 0x0000},
                               {33, 5, 0x85000000, 0x0000},
                               {128, 127, 0xFF000000, 0x0000},
                               {1024, 300, 0xAC000000, 0x0100}};
    for (Row const& row : rows) {
        DevicePointer const real(new ArrayController("", false, row.physicalUnits, 32, "K"));
        DevicePointer const its(new PhysicalDrive("", row.drive, PhysicalDrive::eData));
        ModRoot* const root = new ModRoot;
        DevicePointer const owner = root->getDevicePtr();
        owner->receive(real);
        real->receive(its);
        command_test::FakeBMICDevice target({command_test::Answer{.data = {0xA1, 0xB2}}});
        Common::copy_ptr<Records::PHYSICAL_DRIVE_STATUS> reply;
        Core::OperationReturn result;
        EXPECT_TRUE(PhysicalDrive::identifyPhysicalDrive(its, target, row.drive, reply, result));
        ASSERT_EQ(1U, target.sent.size());
        EXPECT_EQ(0x15U, target.sent[0].request.commandByte);
        EXPECT_EQ(2048U, target.sent[0].request.dataLength);
        EXPECT_EQ(row.details, target.sent[0].request.details);
        EXPECT_EQ(row.unit, target.sent[0].request.unit);
        ASSERT_TRUE(reply);
        EXPECT_EQ(0xA1U, reply->bSCSIBus);
        EXPECT_EQ(0xB2U, reply->bSCSIID);
        Core::DeviceFactory::ReleaseRoot(owner);
    }
    command_test::FakeBMICDevice silent({command_test::Answer{.sent = false, .lowLevelStatus = 5}});
    Common::copy_ptr<Records::PHYSICAL_DRIVE_STATUS> reply;
    Core::OperationReturn result;
    EXPECT_FALSE(PhysicalDrive::identifyPhysicalDrive(drive, silent, 4, reply, result));
    EXPECT_EQ("5", attribute(result, "ATTR_NAME_LOW_LEVEL_STATUS"));
    EXPECT_TRUE(PhysicalDrive::identifyPhysicalDrive(drive, silent, 4, reply, result));
    EXPECT_EQ(1U, silent.sent.size()) << "nothing is sent behind a failure";
}

}  // namespace
}  // namespace storage_test
