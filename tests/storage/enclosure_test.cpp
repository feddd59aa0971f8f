// Boxes, processors, expanders, cages and phys, from replies that are written here byte by byte.

#include <array>
#include <functional>
#include <map>
#include <optional>

#include "storage/operations/listed_devices.h"
#include "storage/operations/physical_device_iterator.h"
#include "storage/operations/sep_models.h"
#include "storage/operations/sep_utils.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/enclosure.h"
#include "storage/schema/sas_devices.h"
#include "tests/storage/answers.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

/// The record of one place: nothing but blank texts.
Bytes emptyPlace() {
    Bytes record(1024);
    put(record, 8, std::string(28, ' '));
    put(record, 268, std::string(40, ' '));
    return record;
}

/// A box with bays.
Bytes box(std::string const& serial, std::string const& port = "1E", unsigned number = 1) {
    Bytes record = emptyPlace();
    record[36] = 1;
    put(record, 8, "VQ      VAULTSTACK D12  1.23");
    put(record, 214, port);
    record[105] = static_cast<std::uint8_t>(number);
    record[266] = 12;
    put(record, 268, serial);
    return record;
}

class Enclosures : public StorageTest {
  protected:
    Enclosures() {
        activate({{"ARRAY_CONTROLLER", "DISCOVER_STORAGE_ENCLOSURES"},
                  {"ARRAY_CONTROLLER", "DISCOVER_SEPS"},
                  {"ARRAY_CONTROLLER", "DISCOVER_EXPANDERS"},
                  {"STORAGE_ENCLOSURE", "DISCOVER_SEPS"},
                  {"STORAGE_ENCLOSURE", "DISCOVER_EXPANDERS"},
                  {"STORAGE_ENCLOSURE", "DISCOVER_DRIVE_CAGES"},
                  {"SEP", "DISCOVER_PHYS"}});
    }
    ~Enclosures() override { answers.reset(); }

    /// A controller whose ports have boxes as the two maps tell (a byte for each bus, a bit for each target).
    void controllerWith(char const* internal, char const* external, json identify = json::object(),
                        char const* subsystem = "0x3354") {
        answers.reset();
        identify["bInternalPortStatus"] = internal;
        identify["bExternalPortStatus"] = external;
        start(oneController({{"identify", identify}}, subsystem));
        answers = std::make_unique<Answers>(*door);
    }
    /// One box at the first external port.
    void oneBox(Bytes const& record) {
        controllerWith("0000000000000000", "0100000000000000");
        answers->management[{0x65, 8, 0}] = record;
    }

    std::vector<DevicePointer> enclosures() const { return below(only(), "STORAGE_ENCLOSURE"); }
    /// The only enclosure after a discovery.
    DevicePointer discovered() {
        discover();
        auto const found = enclosures();
        if (found.size() != 1) throw std::runtime_error(std::to_string(found.size()) + " enclosures");
        return found.front();
    }

    std::unique_ptr<Answers> answers;
};

/// Attributes without "ATTR_NAME_", values without "ATTR_VALUE_".
void expectAttributes(Core::Device const& device, std::map<std::string, std::string> const& expected) {
    for (auto const& [name, value] : expected) {
        std::string told = attribute(device, ("ATTR_NAME_" + name).c_str());
        if (told.starts_with("ATTR_VALUE_")) told = told.substr(11);
        EXPECT_EQ(value, told) << name;
    }
}

TEST_F(Enclosures, AreToldApartFromOtherPlaces) {
    struct Case {
        char const* vendorAndProduct;
        bool isValid;
        unsigned bays;
        bool isQbxFir;
        bool isEnclosure;
    };
    for (Case const& row : {
             Case{"KESTAL  VAULTSRV BP8    ", true, 0, false, true},
             {"VQ      VAULTSRV BP8    ", true, 0, false, true},
             {"VQ      VAULTSR  BP8    ", true, 0, false, false},
             {"KESTAL  VAULTSRV BP8    ", false, 0, false, false},
             {"OTHER   VAULTSRV BP8    ", true, 0, false, false},
             {"OTHER   ANY BOX         ", true, 4, false, true},
             {"OTHER   ANY BOX         ", false, 4, false, true},
             {"OTHER   510027 EvBd 255 ", true, 0, true, true},
             {"OTHER   510027 EvBd 255 ", true, 0, false, false},
             {"OTHER   510027 EvBd 255 ", false, 0, true, false},
         }) {
        SCOPED_TRACE(std::string(row.vendorAndProduct) + (row.isQbxFir ? " QBX" : ""));
        controllerWith("0100000000000000", "0000000000000000", json::object(),
                       row.isQbxFir ? "0x33B1" : "0x3354");
        Bytes record = emptyPlace();
        put(record, 8, row.vendorAndProduct);
        record[36] = row.isValid ? 1 : 0;
        record[266] = static_cast<std::uint8_t>(row.bays);
        answers->management[{0x65, 0, 0}] = record;
        discover();
        discover();  // the family is known when the controller has been read
        EXPECT_EQ(row.isEnclosure ? 1U : 0U, enclosures().size());
    }
}

TEST_F(Enclosures, AlarmBytesBecomeStates) {
    struct Case {
        unsigned status, temperature, validity;
        char const *fan, *supply, *heat, *overall;
    };
    char const* const absent = ABSENT;
    for (Case const& row : {
             Case{0x00, 0, 0x0B, "OK", "REDUNDANT", "OK", "OK"},
             {0x11, 3, 0x00, absent, "NOT_REDUNDANT", absent, "OK"},
             {0x01, 0, 0x01, "FAILURE", "NOT_REDUNDANT", absent, "CRITICAL"},
             {0x10, 0, 0x01, "DEGRADED", "NOT_REDUNDANT", absent, "DEGRADED"},
             {0x11, 0, 0x01, "DEGRADED", "NOT_REDUNDANT", absent, "DEGRADED"},
             {0x08, 0, 0x08, absent, "REDUNDANT_DEGRADED", absent, "DEGRADED"},
             {0x00, 1, 0x02, absent, "NOT_REDUNDANT", "WARNING_CONDITION", "DEGRADED"},
             {0x00, 2, 0x02, absent, "NOT_REDUNDANT", "CRITICAL_CONDITION", "CRITICAL"},
             {0x00, 3, 0x02, absent, "NOT_REDUNDANT", "WARNING_CONDITION", "DEGRADED"},
             {0x18, 2, 0x0B, "DEGRADED", "REDUNDANT_DEGRADED", "CRITICAL_CONDITION", "CRITICAL"},
         }) {
        SCOPED_TRACE(std::to_string(row.status) + " " + std::to_string(row.temperature) + " " +
                     std::to_string(row.validity));
        Bytes record = box("S1");
        record[107] = static_cast<std::uint8_t>(row.status);
        record[108] = static_cast<std::uint8_t>(row.temperature);
        record[109] = static_cast<std::uint8_t>(row.validity);
        oneBox(record);
        auto const told = [absent](char const* name, char const* value) {
            return value == absent ? std::string(absent) : std::string(name) + "_" + value;
        };
        expectAttributes(*discovered(), {{"FAN_STATUS", told("FAN_STATUS", row.fan)},
                                         {"POWER_SUPPLY_STATUS", told("POWER_SUPPLY_STATUS", row.supply)},
                                         {"TEMPERATURE_STATUS", told("TEMPERATURE_STATUS", row.heat)},
                                         {"STATUS", told("STATUS", row.overall)}});
    }
}

TEST_F(Enclosures, TellWhereTheyAre) {
    // Ports 1 (bus 1, target 2), 8 (bus 7, target 0) and the last external one (bus 15, targets 0 and 9).
    controllerWith("0004000000000080", "0000000000000001");
    Bytes nearby = box("A", "1I", 3);
    nearby[213] = 2;
    answers->management[{0x65, 1, 2}] = nearby;
    Bytes port = box("B", "??", 4);
    answers->management[{0x65, 7, 7}] = port;
    Bytes far = box("C", "4E", 5);
    put(far, 16, "VAULTSTACK 70  D");
    far[249] = 2;  // target 9 is there as well
    answers->management[{0x65, 15, 0}] = far;
    answers->management[{0x65, 15, 9}] = box("D", "4E", 255);
    discover();
    auto const found = enclosures();
    ASSERT_EQ(4U, found.size());
    expectAttributes(*found[0], {{"LOCATION", "LOCATION_INTERNAL"},
                                 {"BOX", "3"},
                                 {"BOX_INDEX", "34"},
                                 {"PORT", "1I"},
                                 {"SERIAL_NUMBER", "A"},
                                 {"BUS_MODE", "BUS_MODE_SIMPLEX"},
                                 {"VENDOR_ID", "VQ"},
                                 {"PRODUCT_ID", "VAULTSTACK D12"},
                                 {"FIRMWARE_REVISION", "1.23"},
                                 {"MARKETING_NAME", "VaultStack D12 Enclosure"}});
    expectAttributes(*found[1], {{"LOCATION", "LOCATION_INTERNAL"}, {"PORT", "PORT_UNKNOWN"}});
    expectAttributes(
        *found[2], {{"LOCATION", "LOCATION_EXTERNAL"}, {"BOX_INDEX", "0"}, {"BUS_MODE", "BUS_MODE_DUPLEX"}});
    expectAttributes(*found[3], {{"PORT", "PORT_UNKNOWN"}, {"MULTI_DOMAIN_PATHS", ABSENT}});
}

TEST_F(Enclosures, PathsAreFolded) {
    struct Case {
        unsigned present, failed, active;
        char const* ports;
        char const *paths, *status, *isActive;
    };
    for (Case const& row : {
             Case{0x03, 0x00, 0, "1E2E3E", "1E:1,2E:1", "OK", "TRUE"},
             {0x03, 0x00, 1, "1E2E3E", "1E:1,2E:1", "OK", "FALSE"},
             {0x05, 0x04, 0, "1E2E3E", "1E:1,3E:1", "PATH_FAILURE", "TRUE"},
             {0x05, 0x02, 0, "1E2E3E", "1E:1,3E:1", "OK", "TRUE"},
             {0x03, 0x00, 0, "1E1E3E", "1E:1,1E:1", "CABLING_NOT_RECOMMENDED", "TRUE"},
             {0x03, 0x00, 255, "1E2E3E", "1E:1,2E:1", "OK", "FALSE"},
         }) {
        SCOPED_TRACE(row.paths + std::string(row.status));
        Bytes record = box("S1");
        record[423] = static_cast<std::uint8_t>(row.present);
        record[424] = static_cast<std::uint8_t>(row.failed);
        record[425] = static_cast<std::uint8_t>(row.active);
        put(record, 426, row.ports);
        put(record, 442, "\x01\x01\x01");
        oneBox(record);
        expectAttributes(*discovered(),
                         {{"MULTI_DOMAIN_PATHS", row.paths},
                          {"MULTI_DOMAIN_STATUS", std::string("MULTI_DOMAIN_STATUS_") + row.status},
                          {"IS_PATH_ACTIVE", std::string("IS_PATH_ACTIVE_") + row.isActive}});
    }
}

TEST_F(Enclosures, ASecondPathMakesNoDevice) {
    controllerWith("0000000000000000", "0101010000000000");
    answers->management[{0x65, 8, 0}] = box("SAME", "1E", 1);
    answers->management[{0x65, 9, 0}] = box("SAME", "2E", 2);
    answers->management[{0x65, 10, 0}] = box("", "3E", 1);
    for (int pass = 0; pass < 2; ++pass) {
        discover();
        ASSERT_EQ(2U, enclosures().size());
        expectAttributes(*enclosures()[0], {{"MULTI_DOMAIN_PATHS", "1E:1,2E:2"}, {"PORT", "1E"}});
        expectAttributes(*enclosures()[1], {{"MULTI_DOMAIN_PATHS", ABSENT}, {"PORT", "3E"}});
    }
}

Bytes inquiryOf(std::string const& text) {
    Bytes record(802);
    put(record, 14 + 8, text);
    return record;
}

Bytes identityOf(std::string const& port, unsigned number) {
    Bytes record(2048);
    put(record, 112, port);
    record[114] = static_cast<std::uint8_t>(number);
    put(record, 142, "\x50\x0A\x0B\x0C\x0D\x0E\x0F\x89");
    record[1736] = 3;
    record[1738] = 1;
    put(record, 1739, "1E2E");
    put(record, 1755, "\x07\x09");
    return record;
}

TEST_F(Enclosures, HoldTheProcessorsThatTheyList) {
    Bytes record = box("S1");
    record[324] = 255;  // the record has room for 16
    record[325] = 2;
    record[326] = 4;
    record[341] = 0x21;
    record[343] = 0x22;
    record[345] = 0x23;
    record[347] = 0x24;
    for (unsigned i = 4; i < 16; ++i)
        record[341 + 2 * i] = 0x7F;
    oneBox(record);
    answers->addUnit(0x21, 6);
    answers->addUnit(0x22, 6, 0xC0);  // hidden from the host
    answers->addUnit(0x24, 0);        // a drive
    answers->addUnit(0x25, 6);        // in no box
    answers->management[{0x92, 0x21, 0}] = inquiryOf("VQ      ENCL 01 SEP     2.08");
    answers->management[{0x15, 0xA1, 0}] = identityOf("1E", 3);
    answers->management[{0x15, 0xA2, 0}] = identityOf("??", 3);
    answers->management[{0x92, 0x25, 0}] = inquiryOf("VQ      ENCL 14 SEP     0.10");
    answers->management[{0x15, 0xA5, 0}] = identityOf("1E", 255);
    auto const enclosure = discovered();
    auto const seps = below(*enclosure, "SEP");
    ASSERT_EQ(2U, seps.size());
    expectAttributes(*seps[0], {{"DEVICE_NUMBER", "33"},
                                {"VENDOR_ID", "VQ"},
                                {"PRODUCT_ID", "ENCL 01 SEP"},
                                {"FIRMWARE_REVISION", "2.08"},
                                {"WWID", "500A0B0C0D0E0F89"},
                                {"PORT", "1E"},
                                {"BOX", "3"},
                                {"SEP_TYPE", "SEP_TYPE_STORAGE_ENCLOSURE"},
                                {"MARKETING_NAME", "VaultStack 10 Enclosure Processor"},
                                {"ACTIVE_PATH_PORT", "2E"}});
    expectAttributes(*seps[1], {{"DEVICE_NUMBER", "34"},
                                {"PRODUCT_ID", ABSENT},
                                {"PORT", "PORT_UNKNOWN"},
                                {"SEP_TYPE", "SEP_TYPE_SAS_SWITCH"},
                                {"MARKETING_NAME", "SEP"}});
    EXPECT_EQ("ENCL 01 SEP     ", str(Operations::SepUtils::getProductId(seps[0])));
    EXPECT_EQ("                ", str(Operations::SepUtils::getProductId(seps[1])));
    EXPECT_EQ(&only(), Operations::storageSystemFinder(seps[0]).get());
    auto const outside = below(only(), "SEP");
    ASSERT_EQ(1U, outside.size());
    expectAttributes(
        *outside[0],
        {{"DEVICE_NUMBER", "37"}, {"PORT", "PORT_UNKNOWN"}, {"SEP_TYPE", "SEP_TYPE_SAS_SWITCH"}});
    enclosure->Clear("ATTR_NAME_BOX_INDEX");
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE",
              status(enclosure->perform(enclosure->getOperation("OPERATION_DISCOVER_SEPS"))));
}

// Firmware would go to the first of several devices. Without a list at all a processor counts, and gets
// nothing.
TEST_F(Enclosures, ProcessorsWithoutAnAddressOfTheirOwnHaveNoHandle) {
    for (bool const isListed : {true, false}) {
        Bytes record = box("S1");
        record[324] = 1;
        record[341] = 0x21;
        oneBox(record);
        if (isListed) {
            for (unsigned const unit : {0x21U, 0x31U, 0x25U, 0x35U})
                answers->addUnit(unit, 6);
            answers->units[32 + 25] = 0x21;  // the index of the second
            answers->units[96 + 25] = 0x25;  // and of the last
        }
        auto const enclosure = discovered();
        auto processors = below(*enclosure, "SEP");
        EXPECT_EQ(1U, processors.size());
        for (DevicePointer const& each : below(only(), "SEP"))
            processors.push_back(each);
        EXPECT_EQ(isListed ? 2U : 1U, processors.size());
        for (DevicePointer const& each : processors)
            EXPECT_TRUE(dynamic_cast<ConcreteSCSIDevice&>(*each).handle().empty());
    }
}

/// A list that lacks one is read again, and what was in the first one stays.
TEST_F(Enclosures, AWorseSecondListTakesNoAddressAway) {
    oneBox(box("S1"));
    answers->addUnit(0x21, 6);
    discover();
    DevicePointer const controller = only().getDevicePtr();
    answers->lists = 0;
    Operations::ListedDevices const once(controller, 6);
    unsigned const cost = answers->lists;
    for (unsigned const last : {0U, cost, 2 * cost}) {
        SCOPED_TRACE(last);
        answers->lists = 0;
        answers->lastList = last;
        Operations::ListedDevices const devices(controller, 6, {0x21, 0x23});
        EXPECT_EQ(last == 0, devices.handleOf(0x21).empty());
        EXPECT_EQ(last == 0, devices.mayHave(0x23)) << "without any list nobody can tell";
    }
}

TEST_F(Enclosures, ActivePathsAreThoseOfControllersThatKnowSeveral) {
    oneBox(box("S1"));
    answers->addUnit(0x21, 5);
    answers->management[{0x92, 0x21, 0}] = inquiryOf("VQ      EXPANDER        3.10");
    answers->management[{0x15, 0xA1, 0}] = identityOf("1E", 3);
    discover();
    only().Reset();
    only().Receive(
        Core::Attribute("ATTR_NAME_MULTI_PATH_SUPPORTED", "ATTR_VALUE_MULTI_PATH_SUPPORTED_FALSE"));
    EXPECT_TRUE(only().perform(only().getOperation("OPERATION_DISCOVER_EXPANDERS")));
    ASSERT_EQ(1U, below(only(), "EXPANDER").size());
    expectAttributes(*below(only(), "EXPANDER")[0], {{"PORT", "1E"}, {"ACTIVE_PATH_PORT", ABSENT}});
    only().Receive(Core::Attribute("ATTR_NAME_MULTI_PATH_SUPPORTED", "ATTR_VALUE_MULTI_PATH_SUPPORTED_TRUE"));
    EXPECT_TRUE(only().perform(only().getOperation("OPERATION_DISCOVER_EXPANDERS")));
    auto const expanders = below(only(), "EXPANDER");
    ASSERT_EQ(1U, expanders.size());
    expectAttributes(*expanders[0], {{"DEVICE_NUMBER", "33"},
                                     {"PRODUCT_ID", "EXPANDER"},
                                     {"FIRMWARE_REVISION", "3.10"},
                                     {"WWID", "500A0B0C0D0E0F89"},
                                     {"PORT", "1E"},
                                     {"ACTIVE_PATH_PORT", "2E"},
                                     {"ACTIVE_PATH_BOX", "9"}});
}

TEST_F(Enclosures, VersionsOfPartsComeByTheRouteOfTheProduct) {
    Bytes block(164);
    put(block, 4, "BPM 1.0         ");
    put(block, 4 + 5 * 16, "PSU 6.0");
    // Page 1: one enclosure, two types of one and two elements. Page 7: texts behind those of the types.
    Bytes configuration(8 + 40 + 8);
    configuration[0] = 1;
    configuration[3] = 4 + 40 + 8;
    configuration[10] = 2;
    configuration[11] = 36;
    put(configuration, 44, "3.42");
    configuration[49] = 1;
    configuration[53] = 2;
    Bytes descriptors = {7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 'A', 'L', 'L', 0, 0, 0, 2, 'd', '1'};
    for (Bytes const& more : {Bytes{0, 0, 0, 0}, Bytes{0, 0, 0, 0}, Bytes{0, 0, 0xFF, 0xFF, 'e', '3'}})
        descriptors.insert(descriptors.end(), more.begin(), more.end());
    descriptors[3] = static_cast<std::uint8_t>(descriptors.size() - 4);
    struct Case {
        char const* product;
        Bytes diagnostic;
        std::map<std::string, std::string> expected;
    };
    for (Case const& row : {
             Case{"ENCL 03 SEP     ",
                  configuration,
                  {{"BPM_VERSION", "BPM 1.0"},
                   {"POWER_SUPPLY_VERSION", "PSU 6.0"},
                   {"FCM_VERSION", ABSENT},
                   {"SEP_VERSION", ABSENT}}},
             Case{"ENCL 09 SEP     ", configuration, {{"SEP_VERSION", "(1) 3.42"}, {"BPM_VERSION", ABSENT}}},
             Case{"ENCL 09 SEP     ", Bytes{1, 0, 0xFF, 0xFF}, {{"SEP_VERSION", ABSENT}}},
             Case{"ENCL 01 SEP     ", configuration, {{"SEP_VERSION", ABSENT}, {"BPM_VERSION", ABSENT}}},
         }) {
        SCOPED_TRACE(row.product);
        oneBox(box("S1"));
        answers->addUnit(0x21, 6);
        answers->management[{0x92, 0x21, 0}] = inquiryOf(std::string("VQ      ") + row.product + "1.50");
        answers->scsi[0x21] = {{0x3C, block}, {0x1C, row.diagnostic}};
        discover();
        auto const seps = below(only(), "SEP");
        ASSERT_EQ(1U, seps.size());
        expectAttributes(*seps[0], row.expected);
    }
    oneBox(box("S1"));
    answers->addUnit(0x21, 6);
    answers->management[{0x92, 0x21, 0}] = inquiryOf("VQ      ENCL 11 SEP     1.50");
    answers->scsi[0x21] = {{0x1C, configuration}, {0x107, descriptors}};
    discover();
    ASSERT_EQ(1U, below(only(), "SEP").size());
    expectAttributes(*below(only(), "SEP")[0], {{"DRIVE_BAY_VERSION", "d1"},
                                                {"DRIVE_BAY_CONNECTOR_VERSION", ABSENT},
                                                {"ENCLOSURE_VERSION", "e3"},
                                                {"FAN_MODULE_1_VERSION", ABSENT}});
}

TEST_F(Enclosures, AreDividedIntoCages) {
    struct Case {
        char const* product;
        std::vector<std::pair<std::string, std::vector<unsigned>>> cages;
    };
    for (Case const& row : {
             Case{"VAULTSTACK D12  ", {{ABSENT, {3, 17, 64, 127}}}},
             Case{"VAULTSTACK 70  T", {{"DUPLEX_LOCATION_TOP", {3, 17, 64, 127}}}},
             Case{"VAULTSTACK 70  B", {{"DUPLEX_LOCATION_BOTTOM", {3, 17, 64, 127}}}},
             Case{"VAULTSTACK 70  D",
                  {{"DUPLEX_LOCATION_TOP", {3, 17}}, {"DUPLEX_LOCATION_BOTTOM", {64, 127}}}},
         }) {
        SCOPED_TRACE(row.product);
        Bytes record = box("S1");
        put(record, 16, row.product);
        record[216] = 0x08;
        record[218] = 0x02;
        record[224] = 0x01;
        record[231] = 0x80;
        oneBox(record);
        auto const cages = below(*discovered(), "DRIVE_CAGE");
        ASSERT_EQ(row.cages.size(), cages.size());
        for (std::size_t i = 0; i < cages.size(); ++i) {
            expectAttributes(*cages[i], {{"DUPLEX_LOCATION", row.cages[i].first},
                                         {"BUS", "8"},
                                         {"PORT", "1E"},
                                         {"DRIVE_BAYS", "12"},
                                         {"STATUS", "STATUS_OK"},
                                         {"VENDOR_ID", "VQ"},
                                         {"FIRMWARE_REVISION", "1.23"}});
            std::vector<unsigned> drives;
            for (unsigned short const number :
                 dynamic_cast<Schema::DriveCage&>(*cages[i]).installedDriveList().numbers())
                drives.push_back(number);
            EXPECT_EQ(row.cages[i].second, drives);
        }
    }
}

TEST_F(Enclosures, ProcessorsHavePhys) {
    oneBox(box("S1"));
    answers->addUnit(0x21, 6);
    Bytes record = identityOf("1E", 3);
    record[194] = 0xFF;
    record[195] = 0xFF;  // the record has room for 256
    record[196 + 1] = 1;
    record[196 + 2] = 2;
    record[196 + 3] = 9;
    record[708 + 2] = 0x34;
    record[708 + 3] = 0x12;
    record[708 + 4] = record[708 + 5] = 0xFF;
    record[1224 + 1] = 0x0A;
    answers->management[{0x15, 0xA1, 0}] = record;
    discover();
    auto const phys = below(*below(only(), "SEP").at(0), "PHY");
    ASSERT_EQ(256U, phys.size());
    expectAttributes(*phys[0], {{"ATTACHED_DEVICE_TYPE", "ATTACHED_DEVICE_TYPE_NONE"},
                                {"ATTACHED_BMIC_INDEX", ABSENT},
                                {"STATUS", "STATUS_OK"}});
    expectAttributes(*phys[1], {{"ATTACHED_DEVICE_TYPE", "ATTACHED_DEVICE_TYPE_END_DEVICE"},
                                {"ATTACHED_BMIC_INDEX", "4660"},
                                {"PHY_NUMBER", "1"},
                                {"NEGOTIATED_LINK_RATE", "NEGOTIATED_LINK_RATE_6_0_GBPS"}});
    expectAttributes(*phys[2], {{"ATTACHED_DEVICE_TYPE", "ATTACHED_DEVICE_TYPE_EXPANDER"},
                                {"ATTACHED_BMIC_INDEX", ABSENT}});
    expectAttributes(*phys[3], {{"ATTACHED_DEVICE_TYPE", "ATTACHED_DEVICE_TYPE_UNKNOWN"}});
}

TEST_F(Enclosures, TheListOfDevicesIsOneByIndex) {
    oneBox(box("S1"));
    answers->addUnit(0x31, 6);
    answers->addUnit(0x22, 5);
    answers->addUnit(0x11, 6, 0xC0);
    discover();
    auto& adapter = dynamic_cast<Schema::ArrayController&>(only());
    Operations::PhysicalDeviceIterator const devices(adapter);
    using Iterator = Operations::PhysicalDeviceIterator;
    ASSERT_EQ(3U, devices.size());
    EXPECT_EQ(2U, devices.size(6));
    EXPECT_EQ(0U, devices.size(0));
    EXPECT_EQ("5001020304050611", str(Iterator::getSasAddress(*devices.begin())));
    unsigned char bytes[8];
    ASSERT_TRUE(Iterator::getSasAddress(*devices.find(0x31), bytes));
    EXPECT_EQ(Bytes({0x50, 1, 2, 3, 4, 5, 6, 0x31}), Bytes(bytes, bytes + 8));
    EXPECT_TRUE(devices.find(0x99) == devices.end());
    EXPECT_EQ("", str(Iterator::GetDeviceInfo(adapter, 0x22, 6)));
    EXPECT_EQ(str(*devices.find(0x22)), str(Iterator::GetDeviceInfo(adapter, 0x22, 5)));
}

/// A product's text is a key: one that isn't sixteen characters long, or comes twice, is never found.
TEST(SepModels, HaveSixteenCharactersEach) {
    for (Operations::SepModelRow const& row : Operations::sepModels()) {
        EXPECT_EQ(16U, std::string(row.product).size()) << row.product;
        EXPECT_EQ(&row, Operations::findSepModel(row.product)) << row.product;
    }
    EXPECT_EQ(33U, Operations::sepModels().size());
}

}  // namespace
}  // namespace storage_test
