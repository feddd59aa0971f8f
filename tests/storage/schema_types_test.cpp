// The device types: what they are made of, how they are told apart, who visits them, and what they take over
// from a newly discovered twin.

#include <functional>

#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/drives.h"
#include "storage/schema/enclosure.h"
#include "storage/schema/external_devices.h"
#include "storage/schema/logical.h"
#include "storage/schema/mod_root.h"
#include "storage/schema/sas_devices.h"
#include "storage/schema/volumes.h"
#include "sysmod/device_handle.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using namespace Schema;
namespace Handle = Core::SysMod;

Common::string handleOf(char const* route, char const* index = "", char const* node = "/dev/sg7") {
    Handle::PropertyTable table;
    table[Handle::UniqueKey] = "0000:0b:00.0";
    table[Handle::NodePath] = node;
    table[Handle::DeviceIndex] = index;
    table[Handle::Route] = route;
    return Handle::toDeviceInfo(table);
}

PhysicalDriveMap drives(std::initializer_list<unsigned> numbers) {
    PhysicalDriveMap map;
    for (unsigned const number : numbers)
        map.set(number);
    return map;
}

LogicalDriveMap volumes(unsigned number) {
    LogicalDriveMap map;
    map.set(number);
    return map;
}

constexpr unsigned BMIC = 1, SCSI = 2, ATA = 4, CSMI = 8, LEAF = 16, VISITED = 32;

struct TypeRow {
    std::function<Core::Device*()> create;
    char const* type;
    char const* identifier;  // up to a running number for "...:"
    unsigned is;
    std::vector<std::pair<char const*, char const*>> attributes;
};

std::vector<TypeRow> types() {
    return {
        {[] { return new FailedArrayController(handleOf("")); },
         "ATTR_VALUE_TYPE_FAILED_ARRAY_CONTROLLER",
         "FAC:0000:0b:00.0",
         LEAF,
         {}},
        {[] { return new HostBusAdapter(handleOf("")); },
         "ATTR_VALUE_TYPE_HBA",
         "HBA:0000:0b:00.0",
         SCSI | VISITED,
         {}},
        {[] { return new ArrayController(handleOf(""), false, 128, 32, "SLOT_3"); },
         "ATTR_VALUE_TYPE_ARRAY_CONTROLLER",
         "AC:SLOT_3",
         BMIC | SCSI | VISITED,
         {}},
        {[] { return new ExternalArrayController("500A"); },
         "ATTR_VALUE_TYPE_EXTERNAL_ARRAY_CONTROLLER",
         "EAC:500A",
         0,
         {{"ATTR_NAME_WWID", "500A"}}},
        {[] { return new PairedController; }, "ATTR_VALUE_TYPE_PAIRED_CONTROLLER", "PC:", 0, {}},
        {[] { return new RemoteVolume; }, "ATTR_VALUE_TYPE_REMOTE_VOLUME", "RV:", 0, {}},
        {[] { return new CachingManager("cache", "1.2"); },
         "ATTR_VALUE_TYPE_CACHING_MANAGER",
         "CM:cache",
         VISITED,
         {{"ATTR_NAME_CACHING_MANAGER_NAME", "cache"}, {"ATTR_NAME_CACHING_MANAGER_VERSION", "1.2"}}},
        {[] { return new StorageEnclosure(2, "SN42 ", "ATTR_VALUE_LOCATION_EXTERNAL", 0x35); },
         "ATTR_VALUE_TYPE_STORAGE_ENCLOSURE",
         "SE:53_2_SN42",
         BMIC | VISITED,
         {{"ATTR_NAME_BOX", "2"},
          {"ATTR_NAME_BOX_INDEX", "53"},
          {"ATTR_NAME_SERIAL_NUMBER", "SN42"},
          {"ATTR_NAME_LOCATION", "ATTR_VALUE_LOCATION_EXTERNAL"}}},
        {[] { return new DriveCage(2, 5, "1I", drives({3})); },
         "ATTR_VALUE_TYPE_DRIVE_CAGE",
         "DC:2_5_1I",
         BMIC | VISITED,
         {{"ATTR_NAME_BUS", "2"}, {"ATTR_NAME_PORT", "1I"}}},
        {[] { return new SEP(handleOf("CSMI:4:50014380ABCDEF01")); },
         "ATTR_VALUE_TYPE_SEP",
         "SEP:50014380ABCDEF01",
         BMIC | SCSI | CSMI | VISITED,
         {}},
        {[] { return new Expander(handleOf("BMIC:9")); },
         "ATTR_VALUE_TYPE_EXPANDER",
         "EXP:BMIC:9",
         BMIC | SCSI | VISITED,
         {}},
        {[] { return new Phy(11); },
         "ATTR_VALUE_TYPE_PHY",
         "PHY:11",
         BMIC | LEAF,
         {{"ATTR_NAME_PHY_NUMBER", "11"}}},
        {[] { return new PhysicalDrive(handleOf(""), 300, PhysicalDrive::eSpare); },
         "ATTR_VALUE_TYPE_PHYSICAL_DRIVE",
         "PD:300",
         BMIC | SCSI | ATA | VISITED,
         {{"ATTR_NAME_DEVICE_NUMBER", "300"}, {"ATTR_NAME_DRIVE_TYPE", "ATTR_VALUE_DRIVE_TYPE_SPARE"}}},
        {[] { return new NonVaultlinePhysicalDrive(handleOf("CSMI:4:50014380ABCDEF02")); },
         "ATTR_VALUE_TYPE_NON_VAULTLINE_PHYSICAL_DRIVE",
         "NVPD:50014380ABCDEF02",
         SCSI | ATA | CSMI | VISITED,
         {}},
        {[] { return new TapeDrive(handleOf(""), 6); },
         "ATTR_VALUE_TYPE_TAPE_DRIVE",
         "TD:6",
         BMIC | SCSI | LEAF,
         {{"ATTR_NAME_DEVICE_NUMBER", "6"}}},
        {[] { return new Array(1, volumes(4), drives({1}), drives({}), drives({})); },
         "ATTR_VALUE_TYPE_ARRAY",
         "ARR:1",
         BMIC | VISITED,
         {{"ATTR_NAME_ARRAY_NUMBER", "1"}}},
        {[] { return new LogicalDrive(33, handleOf("")); },
         "ATTR_VALUE_TYPE_LOGICAL_DRIVE",
         "LD:33",
         BMIC | SCSI | VISITED,
         {{"ATTR_NAME_DRIVE_NUMBER", "33"}}},
        {[] { return new MirrorGroup(1, {}); },
         "ATTR_VALUE_TYPE_MIRROR_GROUP",
         "MG:1",
         0,
         {{"ATTR_NAME_MIRROR_GROUP_NUMBER", "1"}}},
        {[] { return new ParityGroup(2, {}); },
         "ATTR_VALUE_TYPE_PARITY_GROUP",
         "PG:2",
         0,
         {{"ATTR_NAME_PARITY_GROUP_NUMBER", "2"}}},
        {[] { return new StorageVolume("6006", "MODEL", "SERIAL", "/dev/sdb"); },
         "ATTR_VALUE_TYPE_STORAGE_VOLUME",
         "SV:/dev/sdb",
         SCSI | VISITED,
         {{"ATTR_NAME_VOLUME_UNIQUE_IDENTIFIER", "6006"},
          {"ATTR_NAME_VOLUME_MODEL", "MODEL"},
          {"ATTR_NAME_VOLUME_SERIAL_NUMBER", "SERIAL"},
          {"ATTR_NAME_DRIVE_ACCESS_NAME", "/dev/sdb"}}},
        {[] { return new DiskExtent(1, 2048, 0x123456789AULL, "/boot"); },
         "ATTR_VALUE_TYPE_DISK_EXTENT",
         "DE:1",
         0,
         {{"ATTR_NAME_DISK_EXTENT_NUMBER", "1"},
          {"ATTR_NAME_DISK_EXTENT_OFFSET", "2048"},
          {"ATTR_NAME_DISK_EXTENT_SIZE", "78187493530"},
          {"ATTR_NAME_DISK_EXTENT_MOUNT_POINT", "/boot"}}},
    };
}

template <class Visitor, class Kind>
struct Visits : Visitor {
    Core::OperationReturn visit(Kind&) override { return Core::OperationReturn("VISITED"); }
};

/// A visitor of every type that has visitors.
struct VisitsAll : Core::VisitorDevice,
                   Visits<VisitorModRoot, ModRoot>,
                   Visits<VisitorCachingManager, CachingManager>,
                   Visits<VisitorArray, Array>,
                   Visits<VisitorArrayController, ArrayController>,
                   Visits<VisitorDriveCage, DriveCage>,
                   Visits<VisitorLogicalDrive, LogicalDrive>,
                   Visits<VisitorPhysicalDrive, PhysicalDrive>,
                   Visits<VisitorNonVaultlinePhysicalDrive, NonVaultlinePhysicalDrive>,
                   Visits<VisitorExpander, Expander>,
                   Visits<VisitorSEP, SEP>,
                   Visits<VisitorStorageEnclosure, StorageEnclosure>,
                   Visits<VisitorHostBusAdapter, HostBusAdapter>,
                   Visits<VisitorStorageVolume, StorageVolume> {
    using Core::VisitorDevice::visit;
};

struct VisitsTheRootOnly : Core::VisitorDevice, Visits<VisitorModRoot, ModRoot> {
    using Core::VisitorDevice::visit;
};

TEST(SchemaTypes, AreWhatTheyAreMadeOf) {
    ASSERT_EQ(21U, types().size());
    for (TypeRow const& row : types()) {
        SCOPED_TRACE(row.type);
        DevicePointer const device(row.create());
        EXPECT_EQ(row.type, attribute(*device, "ATTR_NAME_TYPE"));
        std::string const identifier = str(device->toString());
        bool const runs = std::string(row.identifier).back() == ':';
        EXPECT_EQ(row.identifier, runs ? identifier.substr(0, 3) : identifier);
        for (auto const& [name, value] : row.attributes)
            EXPECT_EQ(value, attribute(*device, name)) << name;
        EXPECT_EQ((row.is & BMIC) != 0, dynamic_cast<BMICDevice*>(device.get()) != nullptr);
        EXPECT_EQ((row.is & SCSI) != 0, dynamic_cast<SCSIDevice*>(device.get()) != nullptr);
        EXPECT_EQ((row.is & ATA) != 0, dynamic_cast<ATADevice*>(device.get()) != nullptr);
        EXPECT_EQ((row.is & CSMI) != 0, dynamic_cast<CSMIDevice*>(device.get()) != nullptr);
        EXPECT_NE(nullptr, dynamic_cast<Core::OperationRegistry*>(device.get()));
        DevicePointer const child(new Phy(0));
        EXPECT_EQ((row.is & LEAF) == 0, device->receive(child));
        EXPECT_EQ((row.is & VISITED) != 0 ? "VISITED" : "ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE",
                  status(VisitsAll().visit(*device)));
        EXPECT_EQ("ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE", status(VisitsTheRootOnly().visit(*device)));
        DevicePointer const twin(row.create());
        EXPECT_EQ(!runs, *device == *twin) << "a rediscovery finds it again";
        EXPECT_TRUE(*device == *device->clone());
    }
}

TEST(SchemaTypes, TellSiblingsApart) {
    auto const named = [](auto* device, char const* number) {
        device->Receive(Core::Attribute("ATTR_NAME_DEVICE_NUMBER", number));
        return device;
    };
    auto const known = [](char const* wwn) {
        auto* const drive = new NonVaultlinePhysicalDrive(handleOf(""));
        drive->SetUniqueID(wwn);
        return drive;
    };
    struct Row {
        char const* what;
        Core::Device* left;
        Core::Device* right;
        bool same;
    };
    Row const rows[] = {
        {"boxes in two places", new StorageEnclosure(1, "S", "", 0x11),
         new StorageEnclosure(1, "S", "", 0x21), false},
        {"another box in one place", new StorageEnclosure(1, "S", "", 0x11),
         new StorageEnclosure(1, "T", "", 0x11), false},
        {"halves of a duplex box", new DriveCage(0, 1, "1I", drives({})),
         new DriveCage(1, 1, "1I", drives({})), false},
        {"processors on their adapter's handle", named(new SEP(handleOf("")), "7"),
         named(new SEP(handleOf("")), "8"), false},
        {"an expander after recabling", new Expander(handleOf("CSMI:1:5001438000000001")),
         new Expander(handleOf("CSMI:2:5001438000000001")), true},
        {"drives of one handle", known("5000C50000000001"), known("5000C50000000002"), false},
        {"a drive that moved", known("5000C50000000001"), known("5000C50000000001"), true},
        {"a drive and a tape of one number", new PhysicalDrive(handleOf(""), 4, PhysicalDrive::eData),
         new TapeDrive(handleOf(""), 4), false},
        {"a volume without a node", new StorageVolume("A", "", "", ""), new StorageVolume("B", "", "", ""),
         false},
    };
    for (Row const& row : rows) {
        DevicePointer const left(row.left), right(row.right);
        EXPECT_EQ(row.same, *left == *right) << row.what;
    }
}

TEST(SchemaTypes, TakeOverFromATwinWhatARediscoveryFound) {
    SEP sep(handleOf("BMIC:7", "7", "/dev/sg1"));
    sep.UpdateWith(DevicePointer(new SEP(handleOf("BMIC:7", "7", "/dev/sg2"))));
    EXPECT_TRUE(sep.handle() == handleOf("BMIC:7", "7", "/dev/sg2"));
    EXPECT_TRUE(sep.CSMIHandle() == handleOf("BMIC:7", "7", "/dev/sg2"));
    DriveCage cage(0, 1, "1I", drives({1, 2}));
    cage.UpdateWith(DevicePointer(new DriveCage(0, 1, "1I", drives({2, 9}))));
    EXPECT_TRUE(cage.installedDriveList() == drives({2, 9}));
    Array array(0, volumes(1), drives({1}), drives({2}), drives({3}));
    array.UpdateWith(DevicePointer(
        new Array(0, volumes(5), drives({4}), drives({6}), drives({7}), Array::eAutoReplace, true)));
    EXPECT_TRUE(array.logicalDriveMap() == volumes(5));
    EXPECT_TRUE(array.dataDriveList() == drives({4}));
    EXPECT_TRUE(array.spareDriveList() == drives({6}));
    EXPECT_TRUE(array.failedDriveList() == drives({7}));
    EXPECT_EQ(Array::eAutoReplace, array.spareType());
    EXPECT_TRUE(array.isAcceleratedIOMode());
    array.UpdateWith(DevicePointer(new PairedController));
    EXPECT_TRUE(array.dataDriveList() == drives({4})) << "no twin";
}

TEST(Enclosure, KnowsWhereItsCagesAre) {
    struct Row {
        std::uint8_t boxIndex;
        unsigned bus;
        unsigned target;
    };
    for (Row const& row : {Row{0x10, 0, 0}, Row{0x35, 2, 5}, Row{0xFF, 14, 15}, Row{0x0F, 15, 15}}) {
        StorageEnclosure box(1, "", "", row.boxIndex);
        ASSERT_EQ(1U, box.driveCageLocationList().size());
        EXPECT_EQ(row.bus, (*box.driveCageLocationList().begin()).bus);
        EXPECT_EQ(row.target, (*box.driveCageLocationList().begin()).target);
        box.AddPlace({3, 9});
        EXPECT_EQ(1U, box.driveCageLocationList().size()) << "a second path has no cage of its own";
        ASSERT_EQ(1U, box.otherPlaces().size());
        EXPECT_TRUE(*box.otherPlaces().begin() == (Schema::CageLocation{3, 9}));
    }
    EXPECT_EQ(1U, StorageEnclosure(1, "", "", 0).driveCageLocationList().size()) << "bus 15, target 0";
    EXPECT_TRUE(StorageEnclosure(1, "", "").driveCageLocationList().empty()) << "behind a plain adapter";
}

TEST(SEPs, KnowTheirIndexAndTheirZones) {
    SEP sep(handleOf("BMIC:7", "7"));
    EXPECT_EQ(7U, sep.bmicIndex());
    sep.Receive(Core::Attribute("ATTR_NAME_DEVICE_NUMBER", "496"));
    EXPECT_EQ(496U, sep.bmicIndex());
    EXPECT_EQ(0xFFFFU, Expander(handleOf("")).bmicIndex()) << "no index, as opposed to the index 0";
    struct Row {
        unsigned char code;
        char const* type;
        bool zones;
        bool staticZones;
    };
    static Row const rows[] = {
        {0, "ATTR_VALUE_SEP_TYPE_UNKNOWN", false, false},
        {1, "ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE", false, false},
        {2, "ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE", false, false},
        {4, "ATTR_VALUE_SEP_TYPE_SAS_SWITCH", true, false},
        {5, "ATTR_VALUE_SEP_TYPE_ZONED_ENCLOSURE", true, true},
        {255, "ATTR_VALUE_SEP_TYPE_UNKNOWN", false, false},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(row.type, str(SEP::sepType(row.code)));
        sep.Receive(Core::Attribute("ATTR_NAME_SEP_TYPE", SEP::sepType(row.code)));
        EXPECT_EQ(row.zones, sep.SupportSEPZoning()) << row.type;
        EXPECT_EQ(row.staticZones, sep.SupportsStaticZoningModes()) << row.type;
    }
}

TEST(Arrays, AreDeletedWithoutALogicalDriveOrAPlaceInTheTree) {
    EXPECT_FALSE(Array(0, volumes(1), drives({1}), drives({}), drives({})).isDeleted());
    EXPECT_TRUE(Array(0, LogicalDriveMap(), drives({1}), drives({}), drives({})).isDeleted());
    DevicePointer const controller(new ArrayController(handleOf(""), false, 128, 32, "K"));
    auto* const array = new Array(0, volumes(1), drives({1}), drives({}), drives({}));
    DevicePointer const owner(array);
    ModRoot* const root = new ModRoot;
    DevicePointer const rootOwner = root->getDevicePtr();
    rootOwner->receive(controller);
    controller->receive(owner);
    EXPECT_FALSE(array->isDeleted());
    rootOwner->clear(controller);
    EXPECT_TRUE(array->isDeleted()) << "what hung below a removed device is stale";
    Core::DeviceFactory::ReleaseRoot(rootOwner);
}

}  // namespace
}  // namespace storage_test
