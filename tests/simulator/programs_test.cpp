/// ksl-machine and ksl-image as a user meets them, and the preloaded door from within a program.

#include <fcntl.h>
#include <stdio.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <thread>

#include "simulator/files.h"
#include "tests/simulator/machine_fixture.h"

namespace simulator_test {
namespace {

namespace fs = std::filesystem;

std::string const BINARIES = KSL_BINARY_DIR;

struct Outcome {
    int status;
    std::string output;  ///< standard output and standard error
};

Outcome run(std::string const& command) {
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    Outcome outcome{-1, ""};
    if (pipe == nullptr) return outcome;
    char buffer[4096];
    std::size_t got = 0;
    while ((got = ::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        outcome.output.append(buffer, got);
    int const status = ::pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

class Programs : public MachineTest {
  protected:
    void SetUp() override { make(twoControllers()); }
    Outcome machineProgram(std::string const& arguments) {
        return run(BINARIES + "/ksl-machine " + arguments);
    }
    /// Runs a shell command on the machine.
    Outcome exec(std::string const& command, std::string const& options = "") {
        return machineProgram("exec " + options + " " + place().string() + " -- sh -c '" + command + "'");
    }
};

TEST_F(Programs, AnOrdinaryProgramSeesTheMachine) {
    EXPECT_EQ("0x1e5c\n", exec("cat /sys/bus/pci/devices/0000:0b:00.0/vendor").output);
    EXPECT_EQ("c0d0\n", exec("ls /dev/xqrth").output);
    EXPECT_EQ("0000:0b:00.0\n0000:13:00.0\n", exec("ls /sys/bus/pci/devices").output);
    EXPECT_EQ("", exec("ls /sys/block").output);
    EXPECT_EQ("0000:0b:00\n", exec("cat /sys/bus/pci/slots/1/address").output);
    EXPECT_EQ("/sys/bus/pci/drivers/xqrth\n",
              exec("readlink -f /sys/bus/pci/devices/0000:0b:00.0/driver").output);
    EXPECT_EQ("/sys/devices/pci0000:0b/0000:0b:00.0\n",
              exec("realpath /sys/bus/pci/devices/0000:0b:00.0").output);
    EXPECT_EQ("12\n",
              exec("cd /sys/bus/pci/devices/0000:13:00.0 && cat host0/target0:0:0/0:0:0:0/type").output);
    EXPECT_EQ(0, exec("test -d /sys/bus/pci/devices/0000:13:00.0/").status);
    EXPECT_EQ(0, exec("test -L /sys/bus/pci/devices/0000:13:00.0").status);
    EXPECT_EQ(1, exec("test -L /sys/bus/pci/devices/0000:13:00.0/").status) << "what the link leads to";
    EXPECT_EQ(1, exec("test -e /sys/bus/pci/devices/0000:00:00.0").status);
    EXPECT_EQ(0, exec("test -e /proc/self/status").status) << "the host's";
}

TEST_F(Programs, LogsGoToTheMachine) {
    EXPECT_EQ("one\n",
              exec("mkdir -p /var/ksl/a/b; echo one > /var/ksl/log; mv /var/ksl/log /var/ksl/a/b/log; "
                   "cd /var; cat ksl/a/b/log; cd ksl; rm -r a")
                  .output);
    EXPECT_TRUE(fs::is_empty(machine->root() / "var/ksl"));
    EXPECT_EQ("", exec("echo kept > /var/ksl/log").output);
    EXPECT_EQ("kept\n", simulator::readText(machine->root() / "var/ksl/log"));
}

TEST_F(Programs, TheExitStatusIsTheCommands) {
    EXPECT_EQ(0, exec("exit 0").status);
    EXPECT_EQ(7, exec("exit 7").status);
    EXPECT_EQ(128 + 9, exec("kill -9 $$").status);
    EXPECT_EQ(127, machineProgram("exec " + place().string() + " -- no-such-program").status);
    EXPECT_EQ(126, machineProgram("exec " + place().string() + " -- /etc/hostname").status);
    EXPECT_EQ(0, machineProgram("exec " + place().string() + " -- ksl-image --help").status)
        << "beside ksl-machine";
}

TEST_F(Programs, SleepingTakesVirtualTime) {
    auto const before = std::chrono::steady_clock::now();
    EXPECT_EQ(0, exec("sleep 3600").status);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::minutes(1));
    EXPECT_EQ("3600.000 s", last("sleep").text);
}

TEST_F(Programs, FailedOpensAreInTheJournal) {
    EXPECT_NE(0, exec("cat /dev/sg5").status);
    EXPECT_EQ("/dev/sg5", last("open").node);
}

/// The body of the next tests, run again under `ksl-machine exec` by this very program: sanitized builds
/// thereby show that the door works for them.
Outcome insideDoor(std::string const& place, std::string const& test, std::string const& options = "") {
    std::string const self = fs::read_symlink("/proc/self/exe");
    return run("KSL_INSIDE_DOOR=1 " + BINARIES + "/ksl-machine exec " + options + " " + place + " -- " +
               self + " --gtest_filter=InsideDoor." + test);
}

class InsideDoor {
  public:
    static void Exchanges();
    static void ThousandExchanges();
    static void Threads();
    static void FailsAtTheThird();

  private:
    /// IDENTIFY CONTROLLER through the pass-through; the running firmware, or the errno's text.
    static std::string identify(int descriptor) {
        Bytes buffer(512, 0);
        Bytes record(88, 0);
        record[8] = 10;
        record[9] = 0xA0;
        record[10] = 30;
        record[12] = 0x26;
        record[18] = 0x11;
        record[19] = 2;
        record[77] = 2;
        void* const pointer = buffer.data();
        std::memcpy(&record[80], &pointer, 8);
        if (::ioctl(descriptor, 0xC058420BUL, record.data()) != 0) return std::strerror(errno);
        return std::string(buffer.begin() + 5, buffer.begin() + 9);
    }
};

void InsideDoor::Exchanges() {
    int const node = ::open("/dev/xqrth/c0d0", O_RDWR);
    ASSERT_GE(node, 0) << std::strerror(errno);
    EXPECT_EQ("6.40", identify(node));
    int const copy = ::dup(node);
    ::close(node);
    EXPECT_EQ("6.40", identify(copy)) << "a duplicate is the node as well";
    errno = 0;
    EXPECT_EQ(-1, ::ioctl(copy, 0xCC770001UL, nullptr));
    EXPECT_EQ(ENOTTY, errno);
    ::close(copy);
    errno = 0;
    EXPECT_EQ(-1, ::ioctl(copy, 0x420EUL, nullptr));
    EXPECT_EQ(EBADF, errno);
    int const directory = ::open("/dev/xqrth", O_RDONLY | O_DIRECTORY);
    int const relative = ::openat(directory, "c0d0", O_RDWR);
    EXPECT_EQ("6.40", identify(relative)) << "by way of its directory";
    ::close(relative);
    ::close(directory);
    struct ::stat status {};
    errno = 0;
    EXPECT_EQ(-1, ::stat("/dev/xqrth/c1d0", &status));
    EXPECT_EQ(ENOENT, errno);
    std::ifstream file("/sys/bus/pci/devices/0000:0b:00.0/device");
    std::string line;
    EXPECT_TRUE(std::getline(file, line));
    EXPECT_EQ("0x3239", line);
    EXPECT_TRUE(fs::is_empty("/sys/block"));
}

void InsideDoor::ThousandExchanges() {
    for (int i = 0; i < 1000; ++i) {
        int const node = ::open("/dev/sg0", O_RDWR);
        ASSERT_EQ("6.64", identify(node));
        ::close(node);
    }
}

void InsideDoor::Threads() {
    auto const work = [] {
        for (int i = 0; i < 20; ++i) {
            int const node = ::open("/dev/sg0", O_RDWR);
            EXPECT_EQ("6.64", identify(node));
            ::close(node);
            ::usleep(1000);
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
}

void InsideDoor::FailsAtTheThird() {
    int const node = ::open("/dev/sg0", O_RDWR);
    EXPECT_EQ("6.64", identify(node));
    EXPECT_EQ("6.64", identify(node));
    EXPECT_EQ("Input/output error", identify(node));
    EXPECT_EQ("No such device", identify(node)) << "vanished";
    EXPECT_EQ(-1, ::open("/dev/sg0", O_RDWR));
    EXPECT_EQ(ENODEV, errno);
    ::close(node);
}

/// These are tests only where a machine is around them: elsewhere they don't exist, rather than be skipped.
class InsideTest : public ::testing::Test {
  public:
    explicit InsideTest(void (*body)()) : m_body(body) {}
    void TestBody() override { m_body(); }

  private:
    void (*m_body)();
};

[[maybe_unused]] bool const insideTestsRegistered = [] {
    if (::getenv("KSL_INSIDE_DOOR") == nullptr) return false;
    std::pair<char const*, void (*)()> const tests[] = {
        {"Exchanges", &InsideDoor::Exchanges},
        {"ThousandExchanges", &InsideDoor::ThousandExchanges},
        {"Threads", &InsideDoor::Threads},
        {"FailsAtTheThird", &InsideDoor::FailsAtTheThird},
    };
    for (auto const& [name, body] : tests)
        ::testing::RegisterTest("InsideDoor", name, nullptr, nullptr, __FILE__, __LINE__,
                                [run = body]() -> ::testing::Test* { return new InsideTest(run); });
    return true;
}();

TEST_F(Programs, AProgramTalksToADeviceThroughTheDoor) {
    Outcome const outcome = insideDoor(place(), "Exchanges");
    EXPECT_EQ(0, outcome.status) << outcome.output;
    EXPECT_NE(std::string::npos, outcome.output.find("[  PASSED  ] 1 test")) << outcome.output;
    EXPECT_EQ("one", last().device);
}

TEST_F(Programs, ThreadsGoThroughTheDoorTogether) {
    Outcome const outcome = insideDoor(place(), "Threads");
    EXPECT_EQ(0, outcome.status) << outcome.output;
    EXPECT_EQ(40U, last().exchange);
}

TEST_F(Programs, AThousandExchangesTakeNoTime) {
    auto const before = std::chrono::steady_clock::now();
    Outcome const outcome = insideDoor(place(), "ThousandExchanges");
    EXPECT_EQ(0, outcome.status) << outcome.output;
    // A quarter of a second on an idle machine; a bound that only a change of order can break.
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(20));
    EXPECT_EQ(1000U, last().exchange);
}

TEST_F(Programs, FaultsOfTheCommandLineStrike) {
    simulator::writeText(directory.path() / "faults.json",
                         R"([{"match": {"exchange": 4}, "action": {"vanish": true}}])");
    std::string const options =
        R"(--fault '{"match": {"exchange": 3}, "action": {"errno": "EIO"}}' --faults )" +
        (directory.path() / "faults.json").string();
    Outcome const outcome = insideDoor(place(), "FailsAtTheThird", options);
    EXPECT_EQ(0, outcome.status) << outcome.output;
    EXPECT_TRUE(fs::is_empty(place() / "runs")) << "the run's files are gone";
}

TEST_F(Programs, ShowAndPowerCycle) {
    Command write = management(0x42, Direction::Out, 1, 0, {2});
    ASSERT_TRUE(simulator::fromHex("27 00 fd 07 01 00 42 00 d4 01 00 00 00 00 00 00", write.block));
    ASSERT_EQ("good", outcome(send(ONE, write)));
    update(ONE, simulator::makeImage("DOGWOOD", "6.72", 20000, 5));
    EXPECT_EQ(
        "DEVICE  KIND              NODE             PRODUCT    RUNS  STORED  INACTIVE  STATE\n"
        "one     array_controller  /dev/xqrth/c0d0  MODEL ONE  6.40  6.72    6.40      restart needed\n"
        "two     array_controller  /dev/sg0         MODEL TWO  6.64  6.64    -         ok\n",
        machineProgram("show " + place().string()).output);
    EXPECT_EQ(0, machineProgram("power-cycle " + place().string()).status);
    json const rows = json::parse(machineProgram("show --json " + place().string()).output);
    EXPECT_EQ("6.72", rows[0]["running"]);
    EXPECT_EQ("ok", rows[0]["state"]);
    EXPECT_EQ(json::parse(R"({"2045": 2})"), rows[0]["nvram"]);
    Outcome const lines = machineProgram("journal --json " + place().string());
    EXPECT_EQ(simulator::readText(place() / "journal.jsonl"), lines.output);
    EXPECT_NE(std::string::npos,
              machineProgram("journal " + place().string()).output.find("FLASH CONTROLLER FIRMWARE"));
}

struct BadCommandLine {
    char const* arguments;  ///< "DIR" stands for the machine's directory
    char const* words;
};

TEST_F(Programs, BadCommandLinesAreRefused) {
    simulator::writeText(directory.path() / "bad.json", "{\"devices\": 3}");
    std::string const temporary = directory.path().string();
    for (BadCommandLine const& each :
         {BadCommandLine{"", "found \"\", expected init, exec, show, journal, power-cycle or --help"},
          BadCommandLine{"frob", "found \"frob\", expected init"},
          BadCommandLine{"init DIR", "found 1 arguments, expected init DIR SCENARIO"},
          BadCommandLine{"init TMP/new TMP/bad.json", "bad.json.devices: found 3, expected a list"},
          BadCommandLine{"init TMP TMP/machine/machine.json", "is neither empty nor a machine"},
          BadCommandLine{"show --yaml DIR", "found the option \"--yaml\", expected show DIR [--json]"},
          BadCommandLine{"show TMP", "is no machine: there is no machine.json in it"},
          BadCommandLine{"exec DIR", "expected DIR, then --, then a command"},
          BadCommandLine{"exec DIR --", "expected DIR, then --, then a command"},
          BadCommandLine{"exec --fault", "--fault: found no value"},
          BadCommandLine{"exec --fault {} DIR -- true", "--fault[0]: found no \"action\", expected one"},
          BadCommandLine{"exec --faults TMP/none DIR -- true",
                         "none can't be read: No such file or directory"}}) {
        std::string arguments = each.arguments;
        for (std::size_t at; (at = arguments.find("DIR")) != std::string::npos;)
            arguments.replace(at, 3, place().string());
        for (std::size_t at; (at = arguments.find("TMP")) != std::string::npos;)
            arguments.replace(at, 3, temporary);
        Outcome const outcome = machineProgram(arguments);
        EXPECT_EQ(2, outcome.status) << arguments;
        EXPECT_NE(std::string::npos, outcome.output.find(each.words)) << arguments << "\n" << outcome.output;
        EXPECT_EQ(0U, outcome.output.find("ksl-machine: ")) << outcome.output;
    }
    EXPECT_EQ(0, machineProgram("--help").status);
}

TEST_F(Programs, ImagesAreMadeAndShown) {
    std::string const file = (directory.path() / "x.rom").string();
    EXPECT_EQ(0,
              run(BINARIES + "/ksl-image make " + file + " --family ALDER --version 1.02 --size 777 --seed 3")
                  .status);
    EXPECT_EQ(simulator::makeImage("ALDER", "1.02", 777, 3), simulator::readWholeFile(file));
    Outcome const shown = run(BINARIES + "/ksl-image show " + file);
    EXPECT_EQ(0, shown.status);
    EXPECT_NE(std::string::npos, shown.output.find("family   ALDER\nversion  1.02\n")) << shown.output;
    fs::resize_file(file, 700);
    EXPECT_EQ(1, run(BINARIES + "/ksl-image show " + file).status);
    EXPECT_EQ(2,
              run(BINARIES + "/ksl-image make " + file + " --family TOOLONGAFAMILYNAME --version 1 --size 99")
                  .status);
    EXPECT_EQ(2, run(BINARIES + "/ksl-image make " + file + " --family A --version 1 --size 63").status);
}

/// The package that the build makes must be one that its own machine takes.
TEST_F(Programs, TheExamplePackageFitsItsMachine) {
    fs::path const package = fs::path(BINARIES) / "examples/two-controllers";
    simulator::Machine::create(place(), package / "machine.json");
    reopen();
    EXPECT_EQ("6.40 6.40 6.40 ok", firmware("left"));
    EXPECT_EQ("6.64 6.64 6.40 ok", firmware("right"));
    Bytes const image = simulator::readWholeFile(package / "dogwood-6.64.rom");
    EXPECT_EQ(13U, (image.size() + 16383) / 16384);
    EXPECT_NE(0U, image.size() % 16384) << "a short last chunk";
    EXPECT_EQ("good", outcome(update("/dev/xqrth/c0d0", image)));
    EXPECT_EQ("good", outcome(update("/dev/sg0", image)));
    EXPECT_EQ("6.64", device("left").stored);
    std::string const catalogue = simulator::readText(package / "Config.xml");
    EXPECT_NE(std::string::npos, catalogue.find("<payload>dogwood-6.64.rom</payload>"));
    EXPECT_NE(std::string::npos, catalogue.find("<name>dogwood</name>"));
    EXPECT_TRUE(fs::exists(package / "dogwood.xml"));
}

/// A processor of each way of taking firmware, and one behind the SAS adapter.
TEST_F(Programs, TheEnclosuresOfTheExampleTakeItsImages) {
    fs::path const package = fs::path(BINARIES) / "examples/enclosures";
    simulator::Machine::create(place(), package / "machine.json");
    reopen();
    struct Row {
        char const* unit;
        char const* node;
        Bytes address;
        char const* image;
        std::uint8_t mode;
        std::size_t piece;  ///< bytes of a chunk, or the least of a batch of lines
        char const* before;
        char const* written;
        char const* after;  ///< behind the activation and ten minutes
    };
    constexpr char SAS[] = "/dev/mpt2ctl:0";
    for (Row const& row : {
             Row{"left/internal",
                 ONE,
                 {16, 0, 0, 0, 0, 0, 0, 1},
                 "encl01-1.20.rom",
                 7,
                 4096,
                 "1.04 1.04 - ok",
                 "1.20 1.20 1.04 ok",
                 "1.20 1.20 1.04 ok"},
             Row{"left/middle-b",
                 ONE,
                 {20, 0, 0, 0, 0, 0, 0, 1},
                 "encl03-1.36.s19",
                 14,
                 11264,
                 "1.30 1.30 - ok",
                 "1.30 1.36 1.30 restart needed",
                 "1.36 1.36 1.30 ok"},
             Row{"right/tower-c",
                 TWO,
                 {18, 0, 0, 0, 0, 0, 0, 1},
                 "encl16-3.00.rom",
                 14,
                 4096,
                 "2.40 2.40 - ok",
                 "2.40 3.00 2.40 restart needed",
                 "3.00 3.00 2.40 ok"},
             Row{"adapter/hba-d",
                 SAS,
                 {0x51, 0xE5, 0xC0, 0xA0, 0, 0, 1, 0x13},
                 "encl12-0.40.rom",
                 14,
                 256,
                 "0.30 0.30 - ok",
                 "0.30 0.40 0.30 restart needed",
                 "0.40 0.40 0.30 ok"},
         }) {
        Bytes const image = simulator::readWholeFile(package / row.image);
        EXPECT_EQ(row.before, firmware(row.unit));
        Command command;
        command.carrier = row.node == SAS ? Carrier::Csmi : Carrier::PassThrough;
        command.csmi = row.node == SAS ? 0xCC770018 : 0;
        std::copy(row.address.begin(), row.address.end(), command.address.begin());
        bool const text = image[0] == 'S';
        for (std::size_t at = 0; at < image.size();) {
            std::size_t end = std::min(at + row.piece, image.size());
            while (text && end < image.size() && image[end - 1] != '\n')
                ++end;
            command.block = {0x3B, row.mode, 0, 0, 0, 0, 0, 0, 0, 0};
            simulator::putBig(&command.block[3], 3, text || row.mode == 7 ? 0 : at);
            simulator::putBig(&command.block[6], 3, end - at);
            command.direction = Direction::Out;
            command.bufferSize = end - at;
            command.dataOut.assign(image.begin() + static_cast<std::ptrdiff_t>(at),
                                   image.begin() + static_cast<std::ptrdiff_t>(end));
            EXPECT_EQ("good", outcome(send(row.node, command))) << row.unit << " at " << at;
            at = end;
        }
        EXPECT_EQ(row.written, firmware(row.unit));
        if (row.mode == 14) {
            command.block = {0x3B, 15, 0, 0, 0, 0, 0, 0, 0, 0};
            command.direction = Direction::None;
            command.bufferSize = 0;
            command.dataOut.clear();
            EXPECT_EQ("good", outcome(send(row.node, command)));
        }
        machine->sleep(600'000'000);
        EXPECT_EQ(row.after, firmware(row.unit));
    }
    std::size_t processors = 0;
    for (simulator::DeviceSummary const& each : machine->devices())
        processors += each.kind == "enclosure_processor" ? 1 : 0;
    EXPECT_EQ(20U, processors);
}

}  // namespace
}  // namespace simulator_test
