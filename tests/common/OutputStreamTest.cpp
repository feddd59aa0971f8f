#include "common/output_stream.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "tests/common/CaptureStream.h"
#include "tests/common/Printers.h"

namespace {

using Common::OutputStreamToBuffer;
using Common::OutputStreamToFile;

// Data that the console and the log take as a format without arguments.
struct FormatCase {
    char const* data;
    char const* printed;
} const formatCases[] = {
    {"plain", "plain"}, {"100%%", "100%"}, {"%%d", "%d"}, {"%d %s%n", "%d %s%n"},
    {"50%", "50%"},     {"%%%%", "%%"},    {"%%%", "%%"}, {"", ""},
};

void accept(Common::OutputStream& stream, std::string const& text) {
    stream.Accept(text.data(), static_cast<unsigned int>(text.size()));
}

TEST(OutputStreamTest, TheConsoleTakesItsDataAsAFormat) {
    Common::OutputStreamToConsole console;
    for (FormatCase const& c : formatCases) {
        testing::internal::CaptureStdout();
        accept(console, c.data);
        std::fflush(stdout);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.printed);
    }
    testing::internal::CaptureStdout();
    console.Accept("abcdef", 3);
    accept(console, std::string("gh\0i", 4));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "abcgh");
}

TEST(OutputStreamTest, TheLogStreamTakesItsDataAsAFormat) {
    Common::OutputStreamToLog log;
    for (FormatCase const& c : formatCases) {
        CaptureStream::Lines lines;
        CaptureStream::attach(lines, 1);
        accept(log, c.data);
        Common::DebugLogger::UnRegisterAllDebugOutputStreams();
        ASSERT_EQ(lines.pieces.size(), 5u);
        EXPECT_EQ(lines.pieces[3], c.printed);
    }
}

TEST(OutputStreamTest, NullCountsAsNoBytes) {
    CaptureStream::Lines lines;
    CaptureStream::attach(lines, 1);
    Common::OutputStreamToConsole().Accept(nullptr, 3);
    Common::OutputStreamToLog().Accept(nullptr, 3);
    EXPECT_EQ(lines.count("Log text refused"), 1u);
    Common::DebugLogger::UnRegisterAllDebugOutputStreams();
    OutputStreamToFile("/dev/null", false).Accept(nullptr, 3);
    OutputStreamToBuffer buffer;
    buffer.Accept(nullptr, 3);
    EXPECT_TRUE(buffer.empty());
}

std::string content(std::string const& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

TEST(OutputStreamTest, AFileIsWrittenAtOnceAndAsItIs) {
    std::string const path = testing::TempDir() + "/stream-" + std::to_string(getpid());
    {
        OutputStreamToFile file(path.c_str(), false);
        ASSERT_TRUE(file.isOpen());
        accept(file, std::string("a\0%d", 4));
        EXPECT_EQ(content(path), std::string("a\0%d", 4));  // flushed, not closed yet
    }
    {
        OutputStreamToFile file(true);
        accept(file, "lost");
        EXPECT_TRUE(file.Open(path.c_str()));
        accept(file, "!");
        EXPECT_EQ(content(path), std::string("a\0%d!", 5));
        EXPECT_TRUE(file.Open(path.c_str(), false));
        accept(file, "new");
    }
    EXPECT_EQ(content(path), "new");
    std::remove(path.c_str());

    OutputStreamToFile nowhere("/nonexistent-directory/file", false);
    EXPECT_FALSE(nowhere.isOpen());
    accept(nowhere, "ignored");
}

TEST(OutputStreamTest, ABufferGrowsByChunks) {
    OutputStreamToBuffer buffer;
    EXPECT_TRUE(buffer.empty());
    accept(buffer, "");
    EXPECT_EQ(buffer.chunkCount(), 0u);
    accept(buffer, std::string(8191, 'a'));
    accept(buffer, "b");
    EXPECT_EQ(buffer.chunkCount(), 1u);
    EXPECT_EQ(buffer.size(), 8192u);
    accept(buffer, "c");
    EXPECT_EQ(buffer.chunkCount(), 2u);
    EXPECT_EQ(buffer.size(), 8193u);
    accept(buffer, std::string(20000, 'd'));
    EXPECT_EQ(buffer.chunkCount(), 4u);
    EXPECT_EQ(buffer.size(), 28193u);
    EXPECT_EQ(buffer.c_str(), std::string(8191, 'a') + "bc" + std::string(20000, 'd'));
    EXPECT_EQ(buffer.chunkCount(), 0u);
    EXPECT_EQ(buffer.size(), 28193u);
}

TEST(OutputStreamTest, CollectedTextComesBeforeWhatFollows) {
    OutputStreamToBuffer buffer;
    accept(buffer, "one");
    buffer.Collect();
    accept(buffer, std::string("\0two", 4));
    EXPECT_EQ(buffer.size(), 7u);
    EXPECT_EQ(buffer.buffer(), Common::string("one\0two", 7));
    buffer.Collect();
    EXPECT_EQ(buffer.size(), 7u);
    buffer.Clear();
    EXPECT_TRUE(buffer.empty());
    EXPECT_EQ(buffer.buffer(), "");
}

TEST(OutputStreamTest, GetSubStrStopsBeforeTheDelimiter) {
    OutputStreamToBuffer buffer;
    accept(buffer, "ab\r\ncd");
    EXPECT_EQ(buffer.getSubStr(0, "\r\n", 2), "ab");
    EXPECT_EQ(buffer.getSubStr(1, "\r\n", 2), "b");
    EXPECT_EQ(buffer.getSubStr(4, "\r\n", 2), "cd");
    EXPECT_EQ(buffer.getSubStr(6, "\r\n", 2), "");
    EXPECT_EQ(buffer.getSubStr(99, "\r\n", 2), "");
}

}  // namespace
