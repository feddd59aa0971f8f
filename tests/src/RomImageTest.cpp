#include "src/romImage.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include "tests/src/RunFixture.h"

namespace {

using RomImageTest = RunTest;

TEST_F(RomImageTest, FilesAreReadWholeOrRefusedInWords) {
    std::string const large(200123, 'K');
    writeFile("whole", "abc");
    writeFile("zeros", std::string("a\0b\0", 4));
    writeFile("large", large);
    writeFile("empty", "");
    std::filesystem::create_directory("folder");
    std::filesystem::create_symlink("nowhere", "dangling");
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);  // without a writer: opening it would wait for ever
    struct {
        char const* path;
        int code;
        std::string contents;
        char const* log;  ///< its end
    } const cases[] = {
        {"whole", 0, "abc", "ROM is 3 bytes\nROM Image 3 bytes read from disk\n"},
        {"zeros", 0, std::string("a\0b\0", 4), "ROM Image 4 bytes read from disk\n"},
        {"large", 0, large, "ROM is 200123 bytes\nROM Image 200123 bytes read from disk\n"},
        {"empty", 0, "", "ROM is 0 bytes\nROM Image 0 bytes read from disk\n"},
        {"missing", 7, "",
         "Error: [No such file or directory] ROM image file \"missing\" could not be opened\n"},
        {"dangling", 7, "",
         "Error: [No such file or directory] ROM image file \"dangling\" could not be opened\n"},
        {"whole/x", 7, "", "Error: [Not a directory] ROM image file \"whole/x\" could not be opened\n"},
        {"folder", 7, "", "Cannot read ROM image folder: Is a directory\n"},
        {"pipe", 7, "", "pipe refused: a pipe, socket or character device found, a file expected\n"},
        {"/dev/zero", 7, "",
         "/dev/zero refused: a pipe, socket or character device found, a file expected\n"},
    };
    for (auto const& one : cases) {
        std::vector<unsigned char> image = {'o', 'l', 'd'};
        EXPECT_EQ(ReadROMImage(one.path, image), one.code) << one.path;
        std::string const log = takeVerboseLog();
        EXPECT_TRUE(log.ends_with(one.log)) << log;
        if (one.code == 0) {
            EXPECT_EQ(std::string(image.begin(), image.end()), one.contents) << one.path;
        }
    }
}

}  // namespace
