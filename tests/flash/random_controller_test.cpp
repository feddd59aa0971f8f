/// A controller that answers with random bytes in every reply, discovered and flashed 10,000 times. Each run
/// must end, with a status that the front end knows and no node left open; that nothing is read outside a
/// reply is for the sanitizers to see.

#include <algorithm>
#include <random>

#include "simulator/kernel_records.h"
#include "tests/flash/flash_fixture.h"

namespace flash_test {
namespace {

/// Stands before the machine's door: nodes and files are the machine's, every command is answered here. That
/// keeps the machine's judgement and journal out of it, which would take most of the time.
class RandomAnswers : public Core::SysMod::SystemCalls {
  public:
    explicit RandomAnswers(Core::SysMod::SystemCalls& door)
        : m_door(door), m_previous(Core::SysMod::SetSystemCalls(this)) {}
    ~RandomAnswers() override { Core::SysMod::SetSystemCalls(m_previous); }
    RandomAnswers(RandomAnswers const&) = delete;
    RandomAnswers& operator=(RandomAnswers const&) = delete;

    void seed(unsigned value) { m_random.seed(value); }
    std::size_t replies() const { return m_replies; }

    int open(char const* path, int flags) override { return m_door.open(path, flags); }
    int close(int descriptor) override { return m_door.close(descriptor); }
    bool listDirectory(std::string const& path, std::vector<std::string>& names) override {
        return m_door.listDirectory(path, names);
    }
    bool readFirstLine(std::string const& path, std::string& line) override {
        return m_door.readFirstLine(path, line);
    }
    bool readFile(std::string const& path, std::string& contents, std::size_t limit) override {
        return m_door.readFile(path, contents, limit);
    }
    bool readLink(std::string const& path, std::string& target) override {
        return m_door.readLink(path, target);
    }

    int ioctl(int, unsigned long number, void* record) override {
        simulator::Request const request = simulator::requestOf(number);
        simulator::Command command;
        std::string reason;
        errno = simulator::decodeRecord(request, record, command, reason);
        if (errno != 0) return -1;
        simulator::Reply reply;
        reply.data.resize(command.room());
        std::generate(reply.data.begin(), reply.data.end(),
                      [this] { return static_cast<std::uint8_t>(m_random()); });
        m_replies += reply.data.empty() ? 0 : 1;
        simulator::encodeReply(request, record, command, reply);
        return 0;
    }

  private:
    Core::SysMod::SystemCalls& m_door;
    Core::SysMod::SystemCalls* m_previous;
    std::mt19937 m_random;
    std::size_t m_replies = 0;
};

constexpr unsigned BLOCKS = 10;
/// Under the thread sanitizer, which has one thread to look at here, a tenth.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define KSL_FEWER_RUNS
#endif
#endif
#ifdef KSL_FEWER_RUNS
constexpr unsigned RUNS_OF_BLOCK = 100;
#else
constexpr unsigned RUNS_OF_BLOCK = 1000;
#endif

/// Blocks run side by side; a seed is its number over all of them.
class RandomController : public FlashTest, public ::testing::WithParamInterface<unsigned> {};

TEST_P(RandomController, IsSurvived) {
    static char const* const SUBSYSTEMS[] = {"0x3354", "0x3376", "0x3379", "0x33B1", "0x33C1", "0x7777"};
    start(oneController({{"fast_path", "enabled"}}, SUBSYSTEMS[GetParam() % std::size(SUBSYSTEMS)]));
    Bytes const image(17000, 0x5A);
    std::size_t flashed = 0;
    RandomAnswers answers(*door);
    for (unsigned run = 0; run < RUNS_OF_BLOCK; ++run) {
        unsigned const seed = GetParam() * RUNS_OF_BLOCK + run;
        SCOPED_TRACE(seed);
        answers.seed(seed);
        Core::DeviceFactory::ForgetRoot();
        root = Core::DeviceFactory().pRoot();
        discover();
        ASSERT_EQ(1U, controllers().size());
        std::string const told = attribute(only(), "ATTR_NAME_STATUS");
        ASSERT_TRUE(told == "ATTR_VALUE_STATUS_OK" || told == "ATTR_VALUE_STATUS_NOT_OK") << told;
        for (auto entry = only().beginAttribute(); entry != only().endAttribute(); ++entry)
            ASSERT_NE("", str((*entry).second)) << str((*entry).first);
        // But for one whose random bits lock its firmware: nothing is read back while flashing.
        OperationPointer const operation =
            only().getOperation("OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE");
        if (operation) {
            operation->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_BUFFER_ADDRESS",
                                   std::to_string(reinterpret_cast<std::uintptr_t>(image.data())).c_str());
            operation->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_BUFFER_SIZE",
                                   std::to_string(image.size()).c_str());
            flashed += only().perform(operation) ? 1 : 0;
        }
        ASSERT_EQ(0U, door->openNodes());
    }
    EXPECT_GT(flashed, RUNS_OF_BLOCK / 4);
    EXPECT_GE(answers.replies(), RUNS_OF_BLOCK * 7U);
    powerOff();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomController, ::testing::Range(0U, BLOCKS));

}  // namespace
}  // namespace flash_test
