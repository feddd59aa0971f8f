// The questions, played on a pseudo-terminal: what a person sees, the logs and the exit status, whole.

#include <gtest/gtest.h>

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <ostream>
#include <regex>

#include "tests/support/package_run.h"
#include "tests/support/verbose_log.h"

namespace {

/// What a dialogue showed and how it ended.
struct Dialogue {
    std::string screen;  ///< with the answers as the terminal echoed them
    int status = -1;
};

constexpr int PATIENCE_MILLISECONDS = 60000;

/// Plays kslflash on a terminal. Each answer is typed when a prompt "(yes/no) " stands at the end.
Dialogue play(PackageRun const& package, std::vector<std::string> const& arguments,
              std::vector<std::string> const& answers) {
    std::vector<std::string> words = {builtProgram("ksl-machine"), "exec", "M", "--",
                                      builtProgram("kslflash")};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string const& word : words) {
        pointers.push_back(const_cast<char*>(word.c_str()));
    }
    pointers.push_back(nullptr);
    int terminal = -1;
    pid_t const child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        if (::chdir(package.directory().c_str()) == 0) {
            ::execv(pointers[0], pointers.data());
        }
        ::_exit(127);
    }
    Dialogue dialogue;
    std::size_t next = 0;
    std::size_t answeredAt = 0;
    static std::string const prompt = "(yes/no) ";
    for (;;) {
        pollfd ready = {terminal, POLLIN, 0};
        if (::poll(&ready, 1, PATIENCE_MILLISECONDS) <= 0) {
            ADD_FAILURE() << "no output for a minute; so far:\n" << dialogue.screen;
            ::kill(child, SIGKILL);
            break;
        }
        char buffer[4096];
        ssize_t const count = ::read(terminal, buffer, sizeof buffer);
        if (count <= 0) {
            break;  // the terminal is gone with its last user
        }
        dialogue.screen.append(buffer, static_cast<std::size_t>(count));
        bool const asks =
            dialogue.screen.size() >= answeredAt + prompt.size() &&
            dialogue.screen.compare(dialogue.screen.size() - prompt.size(), prompt.size(), prompt) == 0;
        if (asks && next < answers.size()) {
            std::string const line = answers[next++] + "\n";
            answeredAt = dialogue.screen.size();
            EXPECT_EQ(::write(terminal, line.data(), line.size()), static_cast<ssize_t>(line.size()));
        }
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(terminal);
    dialogue.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    EXPECT_EQ(next, answers.size()) << "questions that never came; screen:\n" << dialogue.screen;
    dialogue.screen = std::regex_replace(dialogue.screen, std::regex("\r\n"), "\n");
    return dialogue;
}

/// Without the progress line, which is overwritten in place.
std::string withoutProgress(std::string const& screen) {
    return std::regex_replace(screen, std::regex("(\r[^\r\n]*)+\r"), "");
}

constexpr char OPENING[] =
    "\n"
    "\tThis program consists of two phases: device discovery and device update.\n"
    "\tNo device will be updated until you answer.\n"
    "\n"
    "Do you want to run device discovery?\n"
    "(yes/no) ";
constexpr char FOUND[] =
    "Finding hardware. This may take a few minutes.\n"
    "Found 2 devices.\n"
    "\n";
constexpr char UPGRADE[] =
    "Do you want to upgrade the device that has older ROM?\n"
    "(yes/no) ";
constexpr char UPDATING[] =
    "1 devices will be updated.\n"
    "Updating: TR56 Slot: 1 from [6.40] to [6.64]\n"
    "Updating: TR56 Slot: 1 from [6.40] to [6.64]\n"
    "\n"
    "As part of the reboot process, you must power cycle the server and any external array storage devices.\n"
    "\n";
constexpr char SUMMARY[] =
    "Discovered applicable devices:\n"
    "\tTR56: 6.40\n"
    "\tTR58: 6.64\n"
    "Applicable devices found:         2 (2 Controller 0 Expander)\n"
    "Controller Info:\n"
    "\tOldest firmware version:  6.40\n"
    "\tNewest firmware version:  6.64\n"
    "Expander Info:\n"
    "\tOldest firmware version:  0000\n"
    "\tNewest firmware version:  0000\n"
    "Devices with older firmware:      1\n"
    "Devices with current firmware:    1\n"
    "Devices with newer firmware:      0\n"
    "\n";
constexpr char REBOOT[] =
    "\nAs part of the reboot process, you must power cycle the server and any external array storage "
    "devices.\n\n";
constexpr char UPDATED[] = "Updated: TR56 Slot: 1 from 6.40 to 6.64\n";
constexpr char NONE[] = "No devices updated.\n";

struct Row {
    char const* name;
    std::vector<std::string> arguments;
    std::vector<std::string> answers;
    std::string screen;
    std::string log;
    int status;
    char const* older;
};

void PrintTo(Row const& row, std::ostream* out) {
    *out << row.name;
}

Row const ROWS[] = {
    {"Yes",
     {},
     {"yes", "yes"},
     std::string(OPENING) + "yes\n" + FOUND + UPGRADE + "yes\n" + UPDATING,
     std::string(SUMMARY) + UPDATED + REBOOT,
     1,
     "left 6.40/6.64 restart needed"},
    {"NoToTheUpdate",
     {},
     {"Y", "n"},
     std::string(OPENING) + "Y\n" + FOUND + UPGRADE + "n\n" + "\n" + NONE,
     std::string(SUMMARY) + "Upgrade cancelled by user.\n" + NONE,
     5,
     "left 6.40/6.40 ok"},
    {"NoToTheDiscovery", {}, {"no"}, std::string(OPENING) + "no\n" + "\n", "", 5, "left 6.40/6.40 ok"},
    {"QuitAtTheDiscovery", {}, {"quit"}, std::string(OPENING) + "quit\n", "", 5, "left 6.40/6.40 ok"},
    {"AllAtTheDiscovery", {}, {"a"}, std::string(OPENING) + "a\n", "", 5, "left 6.40/6.40 ok"},
    // Quit at the second question marks nothing and interrupts nothing.
    {"QuitAtTheUpdate",
     {},
     {"y", "q"},
     std::string(OPENING) + "y\n" + FOUND + UPGRADE + "q\n" + NONE,
     std::string(SUMMARY) + NONE,
     3,
     "left 6.40/6.40 ok"},
    {"EmptyMeansNo",
     {},
     {"yes", ""},
     std::string(OPENING) + "yes\n" + FOUND + UPGRADE + "\n" + "\n" + NONE,
     std::string(SUMMARY) + "Upgrade cancelled by user.\n" + NONE,
     5,
     "left 6.40/6.40 ok"},
    {"GarbageThenYes",
     {},
     {"maybe", "yes", "yess", "?", "show", "yes"},
     std::string(OPENING) + "maybe\nUnrecognized input.\n(yes/no) yes\n" + FOUND + UPGRADE +
         "yess\nUnrecognized input.\n(yes/no) ?\n"
         "   yes   Update this device\n"
         "   no    Do not update this device (default)\n"
         "   quit  Do not update any renmaining devices\n"
         "   help  This text\n"
         "(yes/no) show\n(yes/no) yes\n" +
         UPDATING,
     std::string(SUMMARY) + UPDATED + REBOOT,
     1,
     "left 6.40/6.64 restart needed"},
    {"ForcedWithNoToTheReflash",
     {"-f"},
     {"yes", "no", "yes"},
     std::string(OPENING) + "yes\n" + FOUND +
         "Do you want to reflash the device that has current ROM?\n(yes/no) no\n\n" + UPGRADE + "yes\n" +
         UPDATING,
     std::string(SUMMARY) + "Reflash cancelled by user.\n" + UPDATED + REBOOT,
     1,
     "left 6.40/6.64 restart needed"},
    {"Help",
     {"-h"},
     {"yes"},
     std::string(OPENING) +
         "yes\nFinding hardware. This may take a few minutes.\n"
         "   -d <file>    Dumps discovery information in XML format to <file>\n"
         "   -g|-f|-e     Force reflashing of supported items\n"
         "   -k<sw_key>   The firmware type in the XML\n"
         "   -q           Query hardware attached - human readable, see -d\n"
         "   -t<tag>      SCSI device tag of device (required - e.g. QBX41)\n"
         "   -v<version>  Version number of new ROM (required)\n"
         "   -z           Disable flashing in zoned environment\n"
         "Found 0 devices.\n\nNo device will be updated.\n"
         "   -d <file>    Dumps discovery information in XML format to <file>\n"
         "   -g|-f|-e     Force reflashing of supported items\n"
         "   -k<sw_key>   The firmware type in the XML\n"
         "   -q           Query hardware attached - human readable, see -d\n"
         "   -t<tag>      SCSI device tag of device (required - e.g. QBX41)\n"
         "   -v<version>  Version number of new ROM (required)\n"
         "   -z           Disable flashing in zoned environment\n" +
         NONE,
     "Discovered applicable devices:\n"
     "Applicable devices found:         0 (0 Controller 0 Expander)\n"
     "Controller Info:\n"
     "\tOldest firmware version:  0000\n"
     "\tNewest firmware version:  0000\n"
     "Expander Info:\n"
     "\tOldest firmware version:  0000\n"
     "\tNewest firmware version:  0000\n"
     "Devices with older firmware:      0\n"
     "Devices with current firmware:    0\n"
     "Devices with newer firmware:      0\n\n" +
         std::string(NONE),
     3,
     "left 6.40/6.40 ok"},
};

class Transcript : public ::testing::TestWithParam<Row> {};

TEST_P(Transcript, ScreenLogStatusAndFirmware) {
    Row const& row = GetParam();
    PackageRun const package("two-controllers");
    Dialogue const dialogue = play(package, row.arguments, row.answers);
    EXPECT_EQ(withoutProgress(dialogue.screen), row.screen);
    EXPECT_EQ(package.componentLog(), row.log);
    EXPECT_EQ(dialogue.status, row.status);
    EXPECT_EQ(package.firmware("left"), row.older);
    expectVerboseLog(package, row.name);
}

INSTANTIATE_TEST_SUITE_P(Questions, Transcript, ::testing::ValuesIn(ROWS),
                         [](auto const& row) { return std::string(row.param.name); });

TEST(Progress, IsShownOnATerminalAndWipedBehind) {
    PackageRun const package("two-controllers");
    std::string const screen = play(package, {}, {"yes", "yes"}).screen;
    EXPECT_NE(screen.find("\rTR56:   7%"), std::string::npos);
    EXPECT_NE(screen.find("\rTR56: 100%"), std::string::npos);
    EXPECT_EQ(screen.find("TR58:"), std::string::npos);
}

TEST(Input, EndsAbnormallyWhenItEndsAtAQuestion) {
    for (char const* input : {"", "yes"}) {  // a last line without a line end counts as no line
        PackageRun const package("two-controllers");
        EXPECT_EQ(package.flash({}, input).status, 128 + SIGABRT) << input;
        EXPECT_EQ(package.firmware("left"), "left 6.40/6.40 ok");
    }
    PackageRun const package("two-controllers");
    EXPECT_EQ(package.flash({}, std::string(250, 'y') + "\nyes\n").status, 128 + SIGABRT);
}

TEST(VerboseLog, OfASilentUpdate) {
    PackageRun const package("two-controllers");
    ASSERT_EQ(package.flash({"-s"}).status, 1);
    expectVerboseLog(package, "Silent");
}

/// A controller's attributes as the log shows them, whole.
TEST(VerboseLog, ListsTheAttributesOfAController) {
    PackageRun const package("two-controllers");
    ASSERT_EQ(package.flash({"-q", "-s"}).status, 0);
    std::string const log = package.verboseLog();
    std::size_t const start = log.find("Device: VQ Vaultline TR58 Controller\n");
    std::size_t const end = log.find("-----", start);
    ASSERT_NE(end, std::string::npos);
    expectTranscript(log.substr(start, end - start), "attributes.txt");
}

}  // namespace
