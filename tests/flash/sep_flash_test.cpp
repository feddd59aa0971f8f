// The flash of enclosure processors: batches, order, and what becomes of failures and arguments.

#include <chrono>
#include <condition_variable>

#include "storage/capability_mask.h"
#include "tests/flash/sep_fixture.h"

namespace flash_test {
namespace {

constexpr char SUCCESS[] = "ATTR_VALUE_STATUS_SUCCESS";
constexpr char FLASH_FAILED[] = "ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR";
constexpr char LIST[] = "ATTR_VALUE_STATUS_OPERATION_RETURN_LIST";

/// Holds the first thread of each batch in its first pause until all of its batch have begun: how many had
/// begun by then makes the batches seen.
class Batches {
  public:
    explicit Batches(std::vector<std::size_t> expected) : m_expected(std::move(expected)) {}

    void begin() {
        std::lock_guard<std::mutex> const lock(m_mutex);
        s_holds = m_begun++ == m_end;
        if (s_holds) m_end += m_seen.size() < m_expected.size() ? m_expected[m_seen.size()] : 0;
        m_changed.notify_all();
    }
    void hold() {
        if (!s_holds) return;
        s_holds = false;
        std::unique_lock<std::mutex> lock(m_mutex);
        std::size_t const before =
            m_end - (m_seen.size() < m_expected.size() ? m_expected[m_seen.size()] : 0);
        m_changed.wait(lock, [this] { return m_begun >= m_end; });
        m_seen.push_back(m_begun - before);
    }
    std::vector<std::size_t> const& seen() const { return m_seen; }

  private:
    static thread_local bool s_holds;

    std::vector<std::size_t> m_expected;
    std::vector<std::size_t> m_seen;
    std::size_t m_begun = 0;
    std::size_t m_end = 0;
    std::mutex m_mutex;
    std::condition_variable m_changed;
};

thread_local bool Batches::s_holds = false;

TEST_F(SepTest, FlashesInBatchesAndResetsOnce) {
    struct Row {
        char const* product;
        unsigned count;
        char const* limit;  ///< null: no argument
        std::vector<std::size_t> batches;
    };
    Row const rows[] = {
        {"ENCL 16 SEP     ", 20, nullptr, {8, 8, 4}},
        {"ENCL 16 SEP     ", 20, "0", {8, 8, 4}},
        {"ENCL 18 SEP     ", 5, "2", {2, 2, 1}},
        {"ENCL 18 SEP     ", 5, "0", {5}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.product + std::string(row.limit != nullptr ? row.limit : " no limit"));
        while (controller->beginChild() != controller->endChild())
            controller->clear(*controller->beginChild());
        seps.clear();
        Events::all().clear();
        addSeps(row.count, row.product);
        Batches batches(row.batches);
        for (FakeSep* const sep : seps) {
            sep->answer = [&](std::size_t number, Written const&) {
                if (number == 1) batches.begin();
                return Outcome();
            };
        }
        Events::onPause() = [&] { batches.hold(); };
        Arguments arguments = {{"ATTR_NAME_PRODUCT_ID", row.product},
                               {"ATTR_NAME_RESET_SEP", "ATTR_VALUE_RESET_SEP_TRUE"}};
        if (row.limit != nullptr) arguments.emplace_back("ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", row.limit);
        auto const result = run(*controller, arguments);
        EXPECT_EQ(SUCCESS, status(result));
        EXPECT_EQ(row.count, returns(result).size());
        Events::onPause() = nullptr;
        EXPECT_EQ(row.batches, batches.seen());
        auto const& events = Events::all();
        EXPECT_EQ(1, std::count(events.begin(), events.end(), "wait 135000"));
        EXPECT_EQ(1, std::count(events.begin(), events.end(), "scan"));
        EXPECT_EQ("bmic 98 1", events.front());
        EXPECT_EQ("bmic 99 1", events.back());
    }
}

TEST_F(SepTest, GoesOneByOneWhenAsked) {
    addSeps(2, "ENCL 03 SEP     ");
    seps[0]->answer = [](std::size_t, Written const&) { return OTHER_ERROR; };
    auto const result = run(*controller, {{"ATTR_NAME_UNIQUE_ID", attribute(*seps[1], "ATTR_NAME_UNIQUE_ID")},
                                          {"ATTR_NAME_UNIQUE_ID", attribute(*seps[0], "ATTR_NAME_UNIQUE_ID")},
                                          {"ATTR_NAME_FLASH_TYPE", "ATTR_VALUE_FLASH_TYPE_SERIAL"},
                                          {"ATTR_NAME_DISABLE_HOTPLUG_EVENTS", "no"},
                                          {"ATTR_NAME_RESET_SEP", "ATTR_VALUE_RESET_SEP_TRUE"}});
    EXPECT_EQ(LIST, status(result));
    auto const list = returns(result);
    ASSERT_EQ(2U, list.size());
    EXPECT_EQ(SUCCESS, status(*list.begin()));
    auto const& failed = *++list.begin();
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE", status(failed));
    EXPECT_EQ(attribute(*seps[0], "ATTR_NAME_UNIQUE_ID"), attribute(failed, "ATTR_NAME_UNIQUE_ID"));
    EXPECT_EQ((Strings{"bmic 98 0", "sep2 reset", "wait 135000", "scan", "bmic 99 0"}), Events::all());
}

TEST_F(SepTest, BehindAPlainAdapterEachPausesItself) {
    addSeps(2, "ENCL 20 SEP     ", true);
    auto result = run(*adapter, {{"ATTR_NAME_PRODUCT_ID", "ENCL 20 SEP     "},
                                 {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "1"},
                                 {"ATTR_NAME_RESET_SEP", "ATTR_VALUE_RESET_SEP_TRUE"}});
    EXPECT_EQ(SUCCESS, status(result));
    EXPECT_EQ((Strings{"sep1 pause", "sep2 pause", "sep1 reset", "sep1 resume", "sep2 reset", "sep2 resume",
                       "wait 135000"}),
              Events::all());
    Events::all().clear();
    result = run(*adapter, {{"ATTR_NAME_PRODUCT_ID", "ENCL 20 SEP     "},
                            {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "0"}});
    auto const& events = Events::all();
    EXPECT_EQ(4U, events.size());
    EXPECT_EQ("sep1 resume", events.at(2)) << "resumed without a reset, too";
    Events::all().clear();
    result = run(*seps[0], {});
    EXPECT_EQ((Strings{"sep1 pause", "sep1 resume"}), Events::all());
}

/// What follows a flash that fails: in both forms, by the status and by the model.
TEST_F(SepTest, ResetsAfterAFailureOnlyWhereThatHelps) {
    struct Row {
        char const* what;
        char const* product;
        Outcome first;
        Outcome second;
        bool isReset;
        char const* status;
    };
    Row const rows[] = {
        {"flash errors", "ENCL 20 SEP     ", FLASH_ERROR, FLASH_ERROR, true, LIST},
        {"one of them good", "ENCL 20 SEP     ", FLASH_ERROR, {}, false, LIST},
        {"another error", "ENCL 20 SEP     ", FLASH_ERROR, OTHER_ERROR, false, LIST},
        {"a model that isn't reset", "ENCL 19 SEP     ", FLASH_ERROR, FLASH_ERROR, false, LIST},
        {"one processor", "ENCL 05 SEP     ", FLASH_ERROR, {}, true, FLASH_FAILED},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        while (controller->beginChild() != controller->endChild())
            controller->clear(*controller->beginChild());
        seps.clear();
        Events::all().clear();
        addSeps(2, row.product);
        Outcome const outcomes[] = {row.first, row.second};
        for (std::size_t i = 0; i < 2; ++i)
            seps[i]->answer = [outcome = outcomes[i]](std::size_t, Written const& sent) {
                return sent.mode == 15 ? Outcome() : outcome;
            };
        auto const result = run(*controller, {{"ATTR_NAME_PRODUCT_ID", row.product},
                                              {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "0"},
                                              {"ATTR_NAME_RESET_SEP", "ATTR_VALUE_RESET_SEP_TRUE"}});
        EXPECT_EQ(row.status, status(result));
        auto const& events = Events::all();
        EXPECT_EQ(row.isReset ? 1 : 0, std::count(events.begin(), events.end(), "sep1 reset"));
        EXPECT_EQ("bmic 99 1", events.back());
        auto const list = returns(result);
        ASSERT_FALSE(list.empty()) << "also of one alone: callers look for the word there";
        EXPECT_EQ("305419896", attribute(*list.begin(), "ATTR_NAME_ADDITIONAL_STATUS"));
    }
    // Alone, the model isn't asked; and the controller stays paused.
    seps[0]->answer = [](std::size_t, Written const& sent) {
        return sent.mode == 15 ? Outcome() : FLASH_ERROR;
    };
    Events::all().clear();
    auto const result = run(*seps[0], {{"ATTR_NAME_RESET_SEP", "ATTR_VALUE_RESET_SEP_TRUE"}});
    EXPECT_EQ(FLASH_FAILED, status(result));
    EXPECT_EQ((Strings{"bmic 98 1", "sep1 reset", "wait 135000"}), Events::all());
}

/// The pause is 0.05 seconds for a full queue, too short for the events.
TEST_F(SepTest, RepeatsAChunkForAttentionsAndFullQueuesWithinLimits) {
    struct Row {
        unsigned status;
        unsigned char key;
        std::size_t refusals;
        std::size_t commands;
        bool isGood;
    };
    constexpr Row rows[] = {{2, 6, 10, 14, true},
                            {2, 6, 11, 11, false},
                            {0x28, 0, 12000, 12004, true},
                            {0x28, 0, 12001, 12001, false}};
    addSeps(1, "ENCL 18 SEP     ");
    for (Row const& row : rows) {
        seps[0]->written.clear();
        seps[0]->answer = [&row](std::size_t number, Written const&) {
            return number <= row.refusals ? Outcome{row.status, 1, row.key, 0x29, 7} : Outcome();
        };
        EXPECT_EQ(row.isGood, bool(run(*seps[0], {})));
        EXPECT_EQ(row.commands, seps[0]->written.size());
    }
}

/// A box without a serial number is in the tree once for each path, and so was each of its processors: two
/// threads then wrote to one device.
TEST_F(SepTest, FlashesADeviceOnceThatIsFoundTwice) {
    addSeps(1, "ENCL 18 SEP     ");
    auto* const twin = new FakeSep(seps[0]->handle(), 2);
    Schema::publish(*twin, "ATTR_NAME_PRODUCT_ID", "ENCL 18 SEP     ");
    Schema::publish(*twin, "ATTR_NAME_FIRMWARE_REVISION", "9.99");
    EXPECT_TRUE(controller->receive(DevicePointer(twin)));
    std::string const id = attribute(*seps[0], "ATTR_NAME_UNIQUE_ID");
    Arguments const forms[] = {{{"ATTR_NAME_PRODUCT_ID", "ENCL 18 SEP     "}},
                               {{"ATTR_NAME_UNIQUE_ID", id}, {"ATTR_NAME_UNIQUE_ID", id}}};
    for (Arguments arguments : forms) {
        seps[0]->written.clear();
        arguments.emplace_back("ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "0");
        EXPECT_EQ(SUCCESS, status(run(*controller, arguments)));
        EXPECT_EQ(4U, seps[0]->written.size());
        EXPECT_TRUE(twin->written.empty());
    }
}

TEST_F(SepTest, TellsWhatIsWrongWithArguments) {
    addSeps(1, "ENCL 18 SEP     ");
    static constexpr char MISSING[] = "ATTR_VALUE_STATUS_ARGUMENT_MISSING";
    static constexpr char INVALID[] = "ATTR_VALUE_STATUS_ARGUMENT_INVALID";
    std::pair<char const*, std::string> const product = {"ATTR_NAME_PRODUCT_ID", "ENCL 18 SEP     "};
    std::pair<char const*, std::string> const limit = {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "0"};
    struct Row {
        Core::Device* device;
        Arguments arguments;
        bool withImage;
        char const* status;
        char const* argument;
    };
    Row const rows[] = {
        {controller, {product, limit}, false, MISSING, "ATTR_NAME_BUFFER_SIZE"},
        {controller,
         {product, limit, {"ATTR_NAME_BUFFER_ADDRESS", "1"}},
         false,
         MISSING,
         "ATTR_NAME_BUFFER_SIZE"},
        {controller, {limit}, true, MISSING, "ATTR_NAME_UNIQUE_ID"},
        {controller, {{"ATTR_NAME_PRODUCT_ID", "UNKNOWN"}, limit}, true, MISSING, "ATTR_NAME_UNIQUE_ID"},
        {controller, {product}, true, MISSING, "ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE"},
        {controller,
         {{"ATTR_NAME_PRODUCT_ID", "ENCL 19 SEP     "}, limit},
         true,
         INVALID,
         "ATTR_NAME_PRODUCT_ID"},
        {controller, {{"ATTR_NAME_UNIQUE_ID", "nobody"}, limit}, true, INVALID, "ATTR_NAME_UNIQUE_ID"},
        {controller,
         {product, {"ATTR_NAME_UNIQUE_ID", "x"}, limit},
         true,
         "ATTR_VALUE_STATUS_FAILURE",
         ABSENT},
        {seps[0], {}, false, MISSING, "ATTR_NAME_BUFFER_SIZE"},
        {seps[0],
         {{"ATTR_NAME_BUFFER_ADDRESS", "0"}, {"ATTR_NAME_BUFFER_SIZE", "1"}},
         false,
         INVALID,
         "ATTR_NAME_BUFFER_ADDRESS"},
        {seps[0],
         {{"ATTR_NAME_BUFFER_ADDRESS", "1"}, {"ATTR_NAME_BUFFER_SIZE", "16777217"}},
         false,
         INVALID,
         "ATTR_NAME_BUFFER_SIZE"},
        {seps[0],
         {{"ATTR_NAME_BUFFER_ADDRESS", "1"}, {"ATTR_NAME_BUFFER_SIZE", "4294967297"}},
         false,
         INVALID,
         "ATTR_NAME_BUFFER_SIZE"},
        {seps[0],
         {{"ATTR_NAME_BUFFER_ADDRESS", "1"}, {"ATTR_NAME_BUFFER_SIZE", "0"}},
         false,
         INVALID,
         "ATTR_NAME_BUFFER_SIZE"},
        {controller,
         {product, {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "65536"}},
         true,
         INVALID,
         "ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE"},
    };
    for (Row const& row : rows) {
        auto const result = run(*row.device, row.arguments, row.withImage);
        EXPECT_EQ(row.status, status(result));
        EXPECT_EQ(row.argument, attribute(result, "ATTR_NAME_ARGUMENT_NAME"));
        if (row.argument == ABSENT) {
            EXPECT_EQ("ATTR_VALUE_OPERATION_FAILURE_REASON_INVALID_ARGUMENT_COMBINATION",
                      attribute(result, "ATTR_NAME_OPERATION_FAILURE_REASON"));
        }
    }
    EXPECT_TRUE(Events::all().empty()) << "nothing is sent";
}

TEST_F(SepTest, PassesOverWhatCannotBeFlashed) {
    struct Row {
        char const* product;
        char const* revision;
        bool anySep;
        bool isFlashed;
    };
    constexpr Row rows[] = {
        {"ENCL 03 SEP     ", "1.19", false, false}, {"ENCL 03 SEP     ", "1.20", false, true},
        {"ENCL 29 SEP     ", "", false, true},      {"ENCL 18 SEP     ", "", false, false},
        {"SOME SEP        ", "9.99", false, false}, {"SOME SEP        ", "", true, true},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.product);
        Interface::StorageMod::globalCapabilityMask().m_EnableAnySEPFlash = row.anySep;
        while (controller->beginChild() != controller->endChild())
            controller->clear(*controller->beginChild());
        seps.clear();
        addSeps(1, row.product, false, row.revision);
        EXPECT_EQ(SUCCESS, status(run(*seps[0], {})));
        EXPECT_EQ(row.isFlashed, !seps[0]->written.empty());
        seps[0]->written.clear();
        EXPECT_EQ(SUCCESS, status(run(*controller, {{"ATTR_NAME_PRODUCT_ID", row.product},
                                                    {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "0"}})));
        EXPECT_EQ(row.isFlashed, !seps[0]->written.empty());
    }
    Interface::StorageMod::globalCapabilityMask().m_EnableAnySEPFlash = false;
}

}  // namespace
}  // namespace flash_test
