#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "common/debug_logger.h"
#include "tests/common/CaptureStream.h"

namespace {

using Common::DebugLogger;
using testing::ElementsAre;
using testing::MatchesRegex;

class LogTest : public testing::Test {
  protected:
    void TearDown() override {
        DebugLogger::Resume();
        DebugLogger::UnRegisterAllDebugOutputStreams();
    }
    CaptureStream::Lines lines;
};

TEST_F(LogTest, IsSilentUntilAStreamIsRegisteredAndWhilePaused) {
    DebugLogger::RegisterDebugOutputStream(1, nullptr);
    EXPECT_FALSE(DebugLogger::QueryIsLoggable());
    DebugLogger::LogCommand("lost");
    CaptureStream::attach(lines, 1);
    EXPECT_TRUE(DebugLogger::QueryIsLoggable());
    DebugLogger::Pause();
    EXPECT_FALSE(DebugLogger::QueryIsLoggable());
    DebugLogger::LogCommand("lost");
    DebugLogger::LogDataBuffer(1, nullptr, 0);
    DebugLogger::Resume();
    DebugLogger::LogMessage(1, "kept", false, false);
    DebugLogger::UnRegisterAllDebugOutputStreams();
    EXPECT_FALSE(DebugLogger::QueryIsLoggable());
    DebugLogger::LogMessage(1, "lost", false, false);
    EXPECT_THAT(lines.pieces, ElementsAre("kept"));
}

TEST_F(LogTest, ALineIsTimestampTextAndNewline) {
    CaptureStream::attach(lines, 1);
    DebugLogger::LogCommand("%s=%d", "n", 7);
    std::string const stamp = "[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]";
    EXPECT_THAT(lines.pieces, ElementsAre("[", MatchesRegex(stamp), "] ", "n=7", "\n"));
}

TEST_F(LogTest, TheTextOfLogMessageIsNoFormat) {
    CaptureStream::attach(lines, 1);
    DebugLogger::LogMessage(1, "50%% %s", false, true);
    DebugLogger::LogMessage(1, "x", false, false);
    EXPECT_THAT(lines.pieces, ElementsAre("50%% %s", "\n", "x"));
}

TEST_F(LogTest, MasksSelectLevels) {
    CaptureStream::Lines trace, both, none;
    CaptureStream::attach(lines, 1);
    CaptureStream::attach(trace, 4);
    CaptureStream::attach(both, 5);
    CaptureStream::attach(none, 0);
    DebugLogger::LogCommand("Performing Operation: ");
    DebugLogger::Log(4, "Processing device: %s", "d");
    DebugLogger::Log(2, "nobody's");
    DebugLogger::Log(6, "either of two levels");
    EXPECT_EQ(lines.count("Performing"), 1u);
    EXPECT_EQ(lines.count("Processing"), 0u);
    EXPECT_EQ(trace.count("Performing"), 0u);
    EXPECT_EQ(trace.count("Processing device: d"), 1u);
    EXPECT_EQ(lines.count("either"), 0u);
    EXPECT_EQ(trace.count("either"), 1u);
    EXPECT_EQ(both.pieces.size(), 15u);
    EXPECT_EQ(none.pieces.size(), 0u);
}

TEST_F(LogTest, StreamsAreServedInTheOrderOfTheirRegistration) {
    for (char const* name : {"b:", "a:", "c:"})
        CaptureStream::attach(lines, 1, name);
    DebugLogger::LogMessage(1, "x", false, false);
    EXPECT_THAT(lines.pieces, ElementsAre("b:x", "a:x", "c:x"));
}

TEST_F(LogTest, NullIsRefusedWithALine) {
    CaptureStream::attach(lines, 4);
    CaptureStream::attach(lines, 1);
    DebugLogger::LogMessage(4, nullptr, false, false);
    DebugLogger::RegisterDebugOutputStream(2, nullptr);
    ASSERT_EQ(lines.pieces.size(), 10u);
    EXPECT_EQ(lines.pieces[3], "Log text refused: null, expected a text");
    EXPECT_EQ(lines.pieces[8], "Log stream of mask 2 refused: null, expected a stream");
}

TEST_F(LogTest, ATooLongTextIsCutOffAndSaysSo) {
    CaptureStream::attach(lines, 1);
    std::string const longest(2047, 'a');
    DebugLogger::LogCommand("%s", longest.c_str());
    DebugLogger::Log(1, "%s%s", longest.c_str(), "beyond");
    ASSERT_EQ(lines.pieces.size(), 15u);
    EXPECT_EQ(lines.pieces[3], longest);
    EXPECT_EQ(lines.pieces[8], longest);
    EXPECT_EQ(lines.pieces[13], "6 characters of a log text cut off");
}

TEST_F(LogTest, ADataBufferIsDumpedSixteenBytesToTheLine) {
    unsigned char data[17];
    for (int i = 0; i < 17; ++i)
        data[i] = static_cast<unsigned char>(0x39 + i * 7);
    CaptureStream::attach(lines, 4);
    DebugLogger::LogDataBuffer(4, data, 17);
    ASSERT_EQ(lines.pieces.size(), 20u);  // four lines of five pieces
    EXPECT_EQ(lines.pieces[3], "      00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 0123456789ABCDEF");
    EXPECT_EQ(lines.pieces[8], "      ----------------------------------------------------------------");
    EXPECT_EQ(lines.pieces[13], " 000  39 40 47 4E 55 5C 63 6A 71 78 7F 86 8D 94 9B A2 9@GNU\\cjqx......");
    EXPECT_EQ(lines.pieces[18], " 010  A9                                              .");
}

TEST_F(LogTest, ADataBufferWithoutLengthIsTwoHeaderLines) {
    CaptureStream::attach(lines, 1);
    unsigned char const data[1] = {1};
    DebugLogger::LogDataBuffer(1, data, 0);
    DebugLogger::LogDataBuffer(1, data, -1);
    DebugLogger::LogDataBuffer(1, nullptr, 5);
    EXPECT_EQ(lines.pieces.size(), 3u * 10u);
}

TEST_F(LogTest, LinesOfThreadsDoNotMix) {
    CaptureStream::attach(lines, 1);
    auto const work = [](char const* name) {
        for (int i = 0; i < 100; ++i)
            DebugLogger::LogCommand("%s", name);
    };
    std::thread a(work, "a"), b(work, "b");
    work("c");
    a.join();
    b.join();
    ASSERT_EQ(lines.pieces.size(), 1500u);
    for (std::size_t i = 0; i < 1500; i += 5) {
        ASSERT_EQ(lines.pieces[i], "[");
        ASSERT_EQ(lines.pieces[i + 3].size(), 1u);
        ASSERT_EQ(lines.pieces[i + 4], "\n");
    }
}

}  // namespace
