#include "src/CLI.h"

#include <sys/stat.h>

#include <optional>
#include <stdexcept>

#include "tests/src/FrontEndFixture.h"

namespace {

char const DeviceHelp[] =
    "   yes   Update this device\n"
    "   no    Do not update this device (default)\n"
    "   quit  Do not update any renmaining devices\n"
    "   help  This text\n";
char const GroupHelp[] =
    "   yes   Update this device\n"
    "   no    Do not update this device (default)\n"
    "   quit  Do not update any remaining devices\n"
    "   help  This text\n";

class CLITest : public FrontEndTest {
  protected:
    template <class Question>
    void expectAnswer(std::string const& typed, std::optional<Answer> answer, std::string const& shown,
                      Question ask) {
        SCOPED_TRACE(typed.substr(0, 40));
        std::optional<Answer> got;
        std::string failure;
        std::string const seen = transcript(typed, [&] {
            try {
                got = ask();
            } catch (std::runtime_error const& error) {
                failure = error.what();
            }
        });
        EXPECT_EQ(got, answer);
        EXPECT_EQ(failure, answer ? "" : "console input failure");
        EXPECT_EQ(seen, shown);
    }
};

TEST_F(CLITest, DeviceQuestionUnderstandsWordsAndTheirBeginnings) {
    std::string const ask = "(yes/no) ";
    std::string const unknown = "Unrecognized input.\n";
    struct {
        std::string typed;
        std::optional<Answer> answer;
        std::string shown;
    } const cases[] = {
        {"y\n", AnsYes, ask},
        {"Y\n", AnsYes, ask},
        {"YE\n", AnsYes, ask},
        {"yes\n", AnsYes, ask},
        {"n\n", AnsNo, ask},
        {"No\n", AnsNo, ask},
        {"\n", AnsNo, ask},
        {"a\n", AnsAll, ask},
        {"all\n", AnsAll, ask},
        {"q\n", AnsQuit, ask},
        {"quit\n", AnsQuit, ask},
        {"yess\ny\n", AnsYes, ask + unknown + ask},
        {" y\nn\n", AnsNo, ask + unknown + ask},
        {"\xC9\nn\n", AnsNo, ask + unknown + ask},
        {"show\ny\n", AnsYes, ask + ask},
        {"?\nq\n", AnsQuit, ask + DeviceHelp + ask},
        {"h\n\n", AnsNo, ask + DeviceHelp + ask},
        {"", std::nullopt, ask},
        {"yes", std::nullopt, ask},
        {std::string(249, 'x') + "\ny\n", AnsYes, ask + unknown + ask},
        {std::string(250, 'x') + "\ny\n", std::nullopt, ask},
        {std::string(100000, 'x') + "\ny\n", std::nullopt, ask},
        {"what\n", std::nullopt, ask + unknown + ask},
    };
    for (auto const& c : cases) {
        expectAnswer(c.typed, c.answer, c.shown, [] { return cli.askFlashIt(1); });
    }
    expectAnswer("y\n", AnsYes, " [NO, yes, quit] ", [] { return cli.askFlashIt(0); });
    expectAnswer("y\n", AnsYes, " [NO, yes, quit] ", [] { return cli.askFlashIt(2); });
}

TEST_F(CLITest, GroupAnswerIsRememberedAndShownAsIfTyped) {
    std::string const one = "Flash this device? [NO, yes, quit] ";
    std::string const many = "Flash these devices? [NO, yes, quit] ";
    struct {
        char const* group;
        int count;
        char const* typed;
        std::optional<Answer> answer;
        std::string shown;
    } const cases[] = {
        {"first", 1, "y\n", AnsYes, one},
        {"first", 1, "", AnsYes, one + "yes\n"},
        {" first\t", 3, "", AnsYes, many + "yes\n"},
        {"second", 2, "?\nshow\nquit\n", AnsQuit, many + GroupHelp + many + many},
        {"second", 0, "", AnsQuit, many + "quit\n"},
        {" third", 1, "\n", AnsNo, one},
        {"third", 1, "", AnsNo, one + "no\n"},
        {"fourth", 1, "all\n", AnsAll, one},
        {"fourth", 1, "", AnsAll, one + "all\n"},
        // A failed question leaves nothing behind.
        {"fifth", 1, "", std::nullopt, one},
        {"fifth", 1, "y\n", AnsYes, one},
        // Devices without a group are asked about one by one.
        {"", 1, "y\n", AnsYes, one},
        {"", 1, "n\n", AnsNo, one},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.group);
        expectAnswer(c.typed, c.answer, c.shown, [&] { return cli.askFlashIt(c.group, c.count); });
    }
}

TEST_F(CLITest, EmptyLineWithoutADefaultIsAskedAgain) {
    struct : CLI {
        using CLI::getLine;
    } console;
    std::string line;
    EXPECT_EQ(transcript("\n\nA Word\n", [&] { line = console.getLine("> ", ""); }), "> > > ");
    EXPECT_EQ(line, "a word");
}

TEST_F(CLITest, AnswerTableHoldsTheSevenWords) {
    std::pair<char const*, int> const rows[] = {{"all", 5},  {"help", 4}, {"?", 4},  {"no", 3},
                                                {"quit", 6}, {"show", 7}, {"yes", 2}};
    QA_Entry const* entry = QA_Map;
    for (auto const& [word, answer] : rows) {
        ASSERT_NE(entry->word, nullptr);
        EXPECT_STREQ(entry->word, word);
        EXPECT_EQ(entry->answer, answer);
        ++entry;
    }
    EXPECT_EQ(entry->word, nullptr);
}

TEST_F(CLITest, ConsoleTextStandsBeforeThePromptThatFollowsIt) {
    EXPECT_EQ(transcript("y\n",
                         [] {
                             cli.printMsg("%d devices\n", 3);
                             std::printf("line end without a flush\n");
                             cli.askFlashIt(1);
                             cli.logAndPrint("done\n");
                             // Past the stream, which would flush the console by itself.
                             EXPECT_EQ(write(STDERR_FILENO, "behind\n", 7), 7);
                         }),
              "3 devices\nline end without a flush\n(yes/no) done\nbehind\n");
}

TEST_F(CLITest, SwitchesDecideWhatGoesWhere) {
    struct {
        bool silent, verbose;
        char const* log;
        char const* document;
        char const *console, *logged, *verboseLog, *xml;
    } const cases[] = {
        {false, true, "log", "xml", "p1\nb3\nd4\n", "l2\nb3\nd4\n", "v5\n", "<x6/>\n"},
        {true, true, "log", "xml", "", "l2\nb3\nd4\n", "v5\n", "<x6/>\n"},
        {false, false, "log", "xml", "p1\nb3\nd4\n", "l2\nb3\nd4\n", "", "<x6/>\n"},
        {false, true, "", "", "p1\nb3\nd4\n", "", "v5\n", ""},
    };
    for (auto const& c : cases) {
        cli.setSilent(c.silent);
        cli.setVerbose(c.verbose);
        cli.setLogFile(c.log);
        cli.setXMLFile(c.document);
        EXPECT_EQ(cli.isSilent(), c.silent);
        EXPECT_EQ(cli.isVerbose(), c.verbose);
        EXPECT_EQ(transcript([] {
                      cli.printMsg("p%d\n", 1);
                      cli.log("l%d\n", 2);
                      cli.logAndPrint("b%d\n", 3);
                      cli.debug("d%d\n", 4);
                      cli.logVerbose("v%d\n", 5);
                      cli.PrintXML("<x%d/>\n", 6);
                  }),
                  c.console);
        EXPECT_EQ(readFile("log"), c.logged);
        EXPECT_EQ(takeVerboseLog(), c.verboseLog);
        EXPECT_EQ(readFile("xml"), c.xml);
        std::filesystem::remove("log");
        std::filesystem::remove("xml");
    }
}

TEST_F(CLITest, FreshConsoleIsNeitherSilentNorVerboseAndWritesNoFile) {
    CLI console(directory() + "/fresh.log");
    EXPECT_FALSE(console.isSilent());
    EXPECT_FALSE(console.isVerbose());
    console.log("x");
    console.PrintXML("x");
    console.logRuler();
    EXPECT_FALSE(std::filesystem::exists("fresh.log"));
}

TEST_F(CLITest, FilesAreAppendedToAndNeverTruncated) {
    writeFile("dump.xml", "<old/>\n");
    cli.setXMLFile("dump.xml");
    cli.PrintXML("<new>%s</new>\n", std::string(100000, 'n').c_str());
    cli.setXMLFile("dump.xml");
    cli.PrintXML("<new/>\n");
    EXPECT_EQ(readFile("dump.xml"), "<old/>\n<new>" + std::string(100000, 'n') + "</new>\n<new/>\n");
    cli.logRuler();
    EXPECT_EQ(takeVerboseLog(), "----------------------------------------------------------------------\n");
}

// Run in a process of its own, since a failure is reported once per process.
TEST_F(CLITest, UnwritableFilesAreReportedOnceEachAlsoWhenSilent) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            mkdir("directory", 0700);
            CLI console("absent/verbose.log");
            console.setSilent(true);
            console.setVerbose(true);
            std::string const seen = transcript([&] {
                for (int round = 0; round < 2; ++round) {
                    console.setLogFile("absent/component.log");
                    console.log("lost\n");
                    console.setLogFile("directory");
                    console.logAndPrint("lost\n");
                    console.setXMLFile("directory");
                    console.PrintXML("lost\n");
                    console.logVerbose("lost\n");
                }
            });
            std::cerr << "[" << seen << "]" << std::flush;
            std::filesystem::remove_all(directory());
            std::_Exit(0);
        },
        ::testing::ExitedWithCode(0),
        "\\[Failed to open log file absent/component.log - No such file or directory\n"
        "Failed to open log file directory - Is a directory\n"
        "Failed to open verbose log file No such file or directory\n\\]");
}

}  // namespace
