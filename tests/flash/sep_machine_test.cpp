// Flashes of enclosure processors in the machine room, which judges what each model is sent and keeps the
// time.

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <set>

#include "simulator/s_record.h"
#include "tests/flash/flash_fixture.h"

namespace flash_test {
namespace {

constexpr char SUCCESS[] = "ATTR_VALUE_STATUS_SUCCESS";
constexpr char FLASH_ERROR[] = "ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR";
constexpr std::size_t IMAGE_SIZE = 16000;
constexpr unsigned SEPS_PER_BOX = 10;

// What an image of 16,000 bytes becomes: mode, number of commands, the third one's offset, the last one's
// length. As S-records it is 500 lines of 80 bytes behind one of 44 and before one of 16: 141 of them close a
// batch.
constexpr char MODE_7[] = "07 x4 @000000 -000e80";
constexpr char CHUNKS[] = "0e x4 @002000 -000e80";
constexpr char SMALL_CHUNKS[] = "0e x63 @000200 -000080";
constexpr char S_RECORDS[] = "0e x4 @000000 -001820";
constexpr char NOTHING[] = "";
constexpr char RESET[] = ", 0f x1 @000000 -000000";

struct ModelRow {
    char const* product;
    char const* behindAdapter;
    char const* alone;
    bool isOnePerBox;
    char const* waits;  ///< with a reset, behind an adapter; empty without one
};

constexpr ModelRow MODELS[] = {
    {"ENCL 01 SEP", MODE_7, NOTHING, true, ""},
    {"ENCL 02 SEP", CHUNKS, NOTHING, true, ""},
    {"ENCL 03 SEP", S_RECORDS, S_RECORDS, false, "wait 135000"},
    {"ENCL 04 SEP", S_RECORDS, S_RECORDS, false, "wait 135000"},
    {"ENCL 05 SEP", CHUNKS, CHUNKS, true, "wait 135000"},
    {"ENCL 06 SEP", CHUNKS, CHUNKS, true, "wait 135000"},
    {"ENCL 07 SEP", S_RECORDS, S_RECORDS, true, "wait 255000"},
    {"ENCL 08 SEP", S_RECORDS, S_RECORDS, true, "wait 135000"},
    {"ENCL 09 SEP", S_RECORDS, S_RECORDS, true, "wait 135000"},
    {"ENCL 10 SEP", S_RECORDS, S_RECORDS, false, "wait 135000"},
    {"ENCL 11 SEP", S_RECORDS, S_RECORDS, false, "wait 375000"},
    {"ENCL 12 SEP", SMALL_CHUNKS, NOTHING, false, ""},
    {"ENCL 13 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 14 SEP", CHUNKS, NOTHING, false, ""},
    {"ENCL 15 SEP", CHUNKS, NOTHING, false, ""},
    {"ENCL 16 SEP", CHUNKS, CHUNKS, false, "wait 2000, wait 135000"},
    {"ENCL 17 SEP", CHUNKS, CHUNKS, false, "wait 2000, wait 135000"},
    {"ENCL 18 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 19 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 20 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 21 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 22 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 23 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 24 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 25 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 26 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 27 SEP", CHUNKS, CHUNKS, false, "wait 2000, wait 135000"},
    {"ENCL 28 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 29 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 30 SEP", CHUNKS, CHUNKS, false, "wait 135000"},
    {"ENCL 31 SEP", CHUNKS, CHUNKS, false, "wait 2000, wait 135000"},
    {"GENERIC SEP", CHUNKS, CHUNKS, false, "wait 135000"},
};

class SepMachineTest : public FlashTest {
  protected:
    SepMachineTest() {
        activate({{"ARRAY_CONTROLLER", "DISCOVER_STORAGE_ENCLOSURES"},
                  {"STORAGE_ENCLOSURE", "DISCOVER_SEPS"},
                  {"ARRAY_CONTROLLER", "WRITE_FLASH_SEP_FIRMWARE"},
                  {"SEP", "WRITE_FLASH_SEP_FIRMWARE"}});
    }

    using FlashTest::start;
    /// Boxes with processors "sep1", "sep2", ... whose firmware is 2.00, and an image of 2.10 for them.
    void start(std::string const& product, unsigned count, json const& more = json::object()) {
        json boxes = json::array();
        for (unsigned i = 1; i <= count; ++i) {
            if (i % SEPS_PER_BOX == 1) {
                unsigned const target = i / SEPS_PER_BOX;
                boxes.push_back({{"bus", 8},
                                 {"target", target},
                                 {"bays", 12},
                                 {"number", target + 1},
                                 {"serial", "BOX" + std::to_string(target)},
                                 {"seps", json::array()}});
            }
            json sep = {{"name", "sep" + std::to_string(i)},
                        {"index", 40 + i},
                        {"product", product},
                        {"revision", "2.00"}};
            sep.merge_patch(more);
            boxes.back()["seps"].push_back(sep);
        }
        discover(oneController({{"boxes", boxes}}));
        image = simulator::makeImage(product, "2.10", IMAGE_SIZE, 7);
    }
    void makeSRecords() {
        std::string const text = simulator::makeSRecords(image, "an enclosure");
        image.assign(text.begin(), text.end());
    }
    Core::Device& sep() const {
        Core::Device& enclosure = **only().beginChild();
        return **enclosure.beginChild();
    }
    Core::OperationReturn flash(Core::Device& device, Arguments arguments) {
        m_before = journalSize();
        OperationPointer const operation = device.getOperation("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
        if (!operation) return Core::OperationReturn("(not available)");
        arguments.emplace_back("ATTR_NAME_BUFFER_ADDRESS",
                               std::to_string(reinterpret_cast<std::uintptr_t>(image.data())));
        arguments.emplace_back("ATTR_NAME_BUFFER_SIZE", std::to_string(image.size()));
        arguments.emplace_back("ATTR_NAME_RESET_SEP", "ATTR_VALUE_RESET_SEP_TRUE");
        for (auto const& [name, value] : arguments)
            operation->SetArgument(Core::DeviceOperation::eSET, name, value.c_str());
        Core::OperationReturn const result = device.perform(operation);
        auto const journal = machine->journal();
        entries.assign(journal.begin() + static_cast<std::ptrdiff_t>(m_before), journal.end());
        for (auto const& entry : entries)
            EXPECT_TRUE(entry.errors.empty()) << entry.command << ": " << entry.errors.front();
        return result;
    }
    static bool isWrite(simulator::JournalEntry const& entry) {
        return entry.event == "exchange" && !entry.unit.empty() && entry.block[0] == 0x3B;
    }
    /// Of the last flash: each run of WRITE BUFFER of one mode to a processor.
    std::string written(std::string const& name) const {
        std::vector<Bytes> blocks;
        for (auto const& entry : entries)
            if (isWrite(entry) && entry.unit == name) blocks.push_back(entry.block);
        std::string text;
        for (std::size_t first = 0, last = 0; first < blocks.size(); first = last) {
            while (last < blocks.size() && blocks[last][1] == blocks[first][1])
                ++last;
            char group[64];
            std::snprintf(group, sizeof group, "%s%02x x%zu @%06x -%06x", first == 0 ? "" : ", ",
                          blocks[first][1], last - first, last - first > 2 ? number(blocks[first + 2], 3) : 0,
                          number(blocks[last - 1], 6));
            text += group;
        }
        return text;
    }
    /// Waits of a second and more.
    std::string waits() const {
        std::string text;
        for (auto const& entry : entries) {
            if (entry.event != "sleep" || std::stod(entry.text) < 1) continue;
            text += (text.empty() ? "wait " : ", wait ") +
                    std::to_string(std::lround(std::stod(entry.text) * 1000));
        }
        return text;
    }
    std::size_t count(std::uint8_t opcode, std::uint8_t management = 0) const {
        std::size_t found = 0;
        for (auto const& entry : entries)
            if (entry.event == "exchange" && !entry.block.empty() && entry.block[0] == opcode &&
                (management == 0 || entry.block[6] == management))
                ++found;
        return found;
    }
    std::string running(std::string const& name) const {
        for (auto const& row : machine->devices())
            if (row.name == "one/" + name) return row.running;
        return "";
    }

    Bytes image;
    std::vector<simulator::JournalEntry> entries;  ///< of the last flash

  private:
    static unsigned number(Bytes const& block, std::size_t at) {
        return static_cast<unsigned>(block[at] << 16 | block[at + 1] << 8 | block[at + 2]);
    }

    std::size_t m_before = 0;
};

class SepModels : public SepMachineTest, public ::testing::WithParamInterface<ModelRow> {};

TEST_P(SepModels, TakeWhatTheyAreSent) {
    ModelRow const& row = GetParam();
    bool const isReset = *row.waits != '\0';
    std::string const reset = isReset ? RESET : "";
    start(row.product, 2);
    if (row.behindAdapter == S_RECORDS) makeSRecords();
    auto result = flash(only(), {{"ATTR_NAME_PRODUCT_ID", std::string(row.product) + "     "},
                                 {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "0"}});
    EXPECT_EQ(SUCCESS, status(result));
    EXPECT_EQ(row.behindAdapter + reset, written("sep1"));
    EXPECT_EQ(row.isOnePerBox ? "" : row.behindAdapter + reset, written("sep2"));
    EXPECT_EQ(row.waits, waits());
    EXPECT_EQ(isReset ? 1U : 0U, count(2)) << "scans";
    EXPECT_EQ(1U, count(0x27, 0x98)) << "pauses";
    EXPECT_EQ(1U, count(0x27, 0x99)) << "resumes";
    // Those without a reset of their own, but for the one that runs what it gets, wait for the power.
    EXPECT_EQ(isReset || row.behindAdapter == MODE_7 ? "2.10" : "2.00", running("sep1"));

    // The other form waits for the same time whatever the model. Two take longer: one isn't there yet; the
    // other has a neighbour at its port and box, which is taken for it.
    result = flash(sep(), {});
    bool const isLate = std::string(row.product) == "ENCL 07 SEP";
    EXPECT_EQ(isLate ? FLASH_ERROR : SUCCESS, status(result));
    EXPECT_EQ(isLate ? "2147483648" : ABSENT, attribute(result, "ATTR_NAME_ADDITIONAL_STATUS"));
    EXPECT_EQ(*row.alone != '\0' ? row.alone + reset : "", written("sep1"));
    EXPECT_EQ("", written("sep2"));
    EXPECT_EQ(*row.alone != '\0' ? "wait 135000" : "", waits());
    EXPECT_EQ(0U, count(2)) << "scans";
}

INSTANTIATE_TEST_SUITE_P(All, SepModels, ::testing::ValuesIn(MODELS));

/// Where each processor is after a discovery: "box <index>" or "controller", and its number.
class SepPlaces : public SepMachineTest {
  protected:
    SepPlaces() { activate({{"ARRAY_CONTROLLER", "DISCOVER_SEPS"}}); }

    /// Two boxes with bays, of one processor each, 41 and 42, that share a serial number or have none.
    static json boxes(char const* serials, json const& more = json::object()) {
        json all = json::array();
        for (unsigned i = 0; i < 2; ++i) {
            json const sep = {{"name", "sep" + std::to_string(i + 1)},
                              {"index", 41 + i},
                              {"product", "ENCL 16 SEP"},
                              {"revision", "2.00"}};
            all.push_back(
                {{"bus", 8}, {"target", i}, {"bays", 12}, {"number", i + 1}, {"seps", json::array({sep})}});
            if (serials[i] != ' ') all.back()["serial"] = std::string(1, serials[i]);
        }
        all.back().merge_patch(more);
        return all;
    }
    std::string places() const {
        std::multiset<std::string> found;
        std::function<void(Core::Device&, std::string const&)> const walk = [&](Core::Device& device,
                                                                                std::string const& place) {
            for (auto child = device.beginChild(); child != device.endChild(); ++child) {
                std::string const type = attribute(**child, "ATTR_NAME_TYPE");
                if (type == "ATTR_VALUE_TYPE_SEP")
                    found.insert(attribute(**child, "ATTR_NAME_DEVICE_NUMBER") + " " + place);
                if (type == "ATTR_VALUE_TYPE_STORAGE_ENCLOSURE")
                    walk(**child, "box " + attribute(**child, "ATTR_NAME_BOX_INDEX"));
            }
        };
        walk(only(), "controller");
        std::string text;
        for (std::string const& each : found)
            text += (text.empty() ? "" : ", ") + each;
        return text;
    }
    static bool hasBothOnce(std::string const& text) {
        return text.size() > 2 && text.substr(0, 2) == "41" && text.find(", 42") != std::string::npos &&
               std::count(text.begin(), text.end(), ',') == 1;
    }
};

TEST_F(SepPlaces, AreInTheFirstOfTheBoxesThatListThem) {
    struct Row {
        char const* what;
        json boxes;
        char const* places;
    };
    json twoPaths = json::array({boxes("  ")[0]});
    twoPaths[0]["paths"] = json::array({{{"bus", 9}, {"target", 0}, {"number", 1}}});
    Row const rows[] = {
        {"two boxes", boxes("AB"), "41 box 144, 42 box 145"},
        {"a second path with a processor of its own", boxes("AA"), "41 box 144, 42 box 144"},
        {"a second path of a box without a serial number", twoPaths, "41 box 144"},
        {"a record with another target number", boxes("AB", {{"bus_parameters", {{"bSCSITargetID", 0}}}}),
         "41 box 144, 42 box 145"},
        {"a box without bays is no enclosure", boxes("AB", {{"bays", 0}}), "41 box 144, 42 controller"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        discover(oneController({{"boxes", row.boxes}}));
        EXPECT_EQ(row.places, places());
    }
}

/// A second look that failed put processors into the tree twice or took them out of it.
TEST_F(SepPlaces, AreThereOnceWhateverLookAtTheirBoxesFails) {
    constexpr unsigned LOOKS = 6;  // of a pass: two boxes, each by three operations
    for (unsigned nth = 1; nth <= 2 * LOOKS; ++nth) {
        SCOPED_TRACE(nth);
        discover(oneController({{"boxes", boxes("AB")}}));
        ASSERT_EQ(LOOKS, sent("00006504"));
        start(oneController({{"boxes", boxes("AB")}}));
        addFault((R"({"match": {"command": "SENSE BUS PARAMETERS", "nth": )" + std::to_string(nth) +
                  R"(}, "action": {"command_status": 4}})")
                     .c_str());
        discover();
        EXPECT_TRUE(hasBothOnce(places())) << places();
        discover();
        EXPECT_TRUE(hasBothOnce(places())) << places();
    }
    // Without the list of devices they can't be addressed, but are there.
    for (unsigned nth = 1; nth <= 12; ++nth) {
        SCOPED_TRACE(nth);
        start(oneController({{"boxes", boxes("AB")}}));
        addFault((R"({"match": {"command": "REPORT PHYSICAL LUNS", "nth": )" + std::to_string(nth) +
                  R"(}, "action": {"errno": "EIO"}})")
                     .c_str());
        for (unsigned pass = 0; pass < 2; ++pass) {
            discover();
            EXPECT_EQ("41 box 144, 42 box 145", places());
        }
    }
    for (unsigned nth = 1; nth <= 12; ++nth) {
        start(oneController({{"boxes", boxes("AB")}}));
        addFault((R"({"match": {"command": "0x11", "nth": )" + std::to_string(nth) +
                  R"(}, "action": {"command_status": 4}})")
                     .c_str());
        for (unsigned pass = 0; pass < 2; ++pass) {
            discover();
            // A controller that failed to identify itself is asked for nothing more.
            std::string const found = places();
            EXPECT_TRUE(found.empty() || hasBothOnce(found)) << nth << ": " << found;
        }
    }
}

/// Half a version passed for an older one, and half a WWID for one that several processors share.
TEST_F(SepPlaces, TakeNoCutReplyForTheirIdentity) {
    struct Row {
        char const* command;
        unsigned size;
        char const* attribute;
        bool isLost;  ///< else the list of devices has it
    };
    constexpr Row rows[] = {
        {"0x92", 49, "ATTR_NAME_FIRMWARE_REVISION", true},
        {"0x92", 50, "ATTR_NAME_FIRMWARE_REVISION", false},
        {"0x15", 149, "ATTR_NAME_WWID", false},
        {"0x15", 150, "ATTR_NAME_WWID", false},
        {"0x15", 149, "ATTR_NAME_BOX", true},
        {"0x15", 150, "ATTR_NAME_BOX", false},
    };
    discover(oneController({{"boxes", boxes("AB")}}));
    std::map<std::string, std::string> whole;
    for (Row const& row : rows)
        whole[row.attribute] = attribute(sep(), row.attribute);
    EXPECT_EQ(16U, whole["ATTR_NAME_WWID"].size());
    for (Row const& row : rows) {
        SCOPED_TRACE(row.command + (" " + std::to_string(row.size)));
        start(oneController({{"boxes", boxes("AB")}}));
        addFault((R"({"match": {"command": ")" + std::string(row.command) + R"("}, "action": {"truncate": )" +
                  std::to_string(row.size) + R"(}, "times": 100})")
                     .c_str());
        discover();
        EXPECT_EQ(row.isLost ? ABSENT : whole[row.attribute], attribute(sep(), row.attribute));
    }
}

/// Behind a plain adapter nothing but the adapter's list tells whether a processor came back.
TEST_F(SepMachineTest, BehindAPlainAdapterTheListTellsWhoCameBack) {
    struct Row {
        json sep;
        char const* status;
    };
    for (Row const& row : {Row{json::object(), SUCCESS}, Row{{{"never_returns", true}}, FLASH_ERROR}}) {
        json target = {{"kind", "enclosure_processor"},
                       {"name", "sep1"},
                       {"product", "ENCL 16 SEP"},
                       {"revision", "2.00"},
                       {"sas_address", "51E5D00000000041"}};
        target.merge_patch(row.sep);
        json const adapter = {{"name", "hba"},
                              {"kind", "csmi_adapter"},
                              {"phys", json::array({target})},
                              {"pci",
                               {{"address", "0000:05:00.0"},
                                {"vendor", "0x1E5C"},
                                {"device", "0x0072"},
                                {"class", "0x010700"},
                                {"driver", "mpt2sas"}}}};
        activate({{"HBA", "DISCOVER_STORAGE_ENCLOSURES"}});
        discover({{"devices", json::array({adapter})}});
        image = simulator::makeImage("ENCL 16 SEP", "2.10", IMAGE_SIZE, 7);
        auto const adapters = below(*root, "HBA");
        ASSERT_EQ(1U, adapters.size());
        Core::Device& enclosure = **adapters.front()->beginChild();
        auto const result = flash(**enclosure.beginChild(), {});
        EXPECT_EQ(row.status, status(result));
        EXPECT_EQ("0e x4 @002000 -000e80, 0f x1 @000000 -000000", written("sep1"));
    }
}

/// When an object's part of a flash began and ended, in virtual milliseconds.
struct Span {
    std::uint64_t first;
    std::uint64_t last;
};

TEST_F(SepMachineTest, TwentyGoInThreeBatchesInTheTimeOfThreeAndPayOneReset) {
    constexpr unsigned SEPS = 20;
    auto const spans = [this] {
        std::vector<std::pair<std::string, Span>> found;
        for (auto const& entry : entries) {
            if (!isWrite(entry) || entry.block[1] != 14) continue;
            auto at = std::find_if(found.begin(), found.end(),
                                   [&](auto const& each) { return each.first == entry.unit; });
            if (at == found.end()) at = found.insert(at, {entry.unit, {entry.microseconds, 0}});
            at->second.last = entry.microseconds;
        }
        return found;
    };
    start("ENCL 16 SEP", 1, {{"needs_scan", true}});
    EXPECT_EQ(SUCCESS, status(flash(only(), {{"ATTR_NAME_PRODUCT_ID", "ENCL 16 SEP     "}})));
    std::uint64_t const alone = spans().front().second.last - spans().front().second.first;
    EXPECT_EQ(165000U, alone) << "three chunks of 5 and three pauses of 50 milliseconds before the last";

    start("ENCL 16 SEP", SEPS, {{"needs_scan", true}});
    EXPECT_EQ(SUCCESS, status(flash(only(), {{"ATTR_NAME_PRODUCT_ID", "ENCL 16 SEP     "}})));
    auto const all = spans();
    ASSERT_EQ(SEPS, all.size());
    std::size_t first = 0;
    for (std::size_t const size : {8U, 8U, 4U}) {
        std::uint64_t begin = ~std::uint64_t{0};
        std::uint64_t end = 0;
        for (std::size_t i = first; i < first + size; ++i) {
            begin = std::min(begin, all[i].second.first);
            end = std::max(end, all[i].second.last);
        }
        EXPECT_LE(end - begin, (alone + 55000) * 12 / 10) << "the batch from " << first << " on";
        first += size;
        if (first < SEPS) {
            EXPECT_LE(end, all[first].second.first) << "batches don't overlap";
        }
    }
    EXPECT_EQ("wait 2000, wait 135000", waits());
    EXPECT_EQ(1U, count(2)) << "scans";
    for (unsigned i = 1; i <= SEPS; ++i)
        EXPECT_EQ("2.10", running("sep" + std::to_string(i)));

    start("ENCL 16 SEP", SEPS, {{"needs_scan", true}});
    EXPECT_EQ(SUCCESS, status(flash(only(), {{"ATTR_NAME_PRODUCT_ID", "ENCL 16 SEP     "},
                                             {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "8"},
                                             {"ATTR_NAME_FLASH_TYPE", "ATTR_VALUE_FLASH_TYPE_SERIAL"}})));
    std::string each = "wait 2000, wait 135000";
    for (unsigned i = 1; i < SEPS; ++i)
        each += ", wait 2000, wait 135000";
    EXPECT_EQ(each, waits()) << "one after the other pays for each";
    EXPECT_EQ(SEPS, count(2)) << "scans";
}

}  // namespace
}  // namespace flash_test
