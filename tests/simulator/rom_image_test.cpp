#include "simulator/rom_image.h"

#include <gtest/gtest.h>

namespace {

using namespace simulator;

TEST(Crc32, AgreesWithThePublishedCheckValue) {
    std::string const text = "123456789";
    EXPECT_EQ(0xCBF43926U, crc32({reinterpret_cast<std::uint8_t const*>(text.data()), text.size()}));
}

TEST(RomImage, HasItsMembersAtTheDocumentedOffsets) {
    Bytes const image = makeImage("DOGWOOD", "6.64", 1000, 7);
    ASSERT_EQ(1000U, image.size());
    EXPECT_EQ("KSLROM1\n", std::string(image.begin(), image.begin() + 8));
    EXPECT_EQ(std::string("DOGWOOD") + std::string(9, '\0'),
              std::string(image.begin() + 8, image.begin() + 24));
    EXPECT_EQ(std::string("6.64") + std::string(4, '\0'),
              std::string(image.begin() + 24, image.begin() + 32));
    EXPECT_EQ((Bytes{64, 0, 0, 0, 0xA8, 0x03, 0, 0}), Bytes(image.begin() + 32, image.begin() + 40));
    EXPECT_EQ(Bytes(16, 0), Bytes(image.begin() + 44, image.begin() + 60));
}

TEST(RomImage, IsTheSameForTheSameSeedOnly) {
    EXPECT_EQ(makeImage("A", "1", 5000, 1), makeImage("A", "1", 5000, 1));
    EXPECT_NE(makeImage("A", "1", 5000, 1), makeImage("A", "1", 5000, 2));
}

struct BadImage {
    char const* what;
    std::size_t keep;  ///< bytes kept
    std::size_t flip;  ///< offset of a byte that is changed
    bool newHeaderCrc;
    char const* words;  ///< in the answer
};

class BadRomImage : public ::testing::TestWithParam<BadImage> {};

TEST_P(BadRomImage, IsRefusedWithTheReason) {
    BadImage const& bad = GetParam();
    Bytes image = makeImage("DOGWOOD", "6.64", 1000, 7);
    image[bad.flip] ^= 0x40;
    if (bad.newHeaderCrc) putLittle(&image[60], 4, crc32(std::span(image).first(60)));
    image.resize(bad.keep);
    ImageInfo info;
    EXPECT_NE(std::string::npos, checkImage(image, info).find(bad.words)) << checkImage(image, info);
}

INSTANTIATE_TEST_SUITE_P(
    All, BadRomImage,
    ::testing::Values(BadImage{"magic", 1000, 0, true, "image magic 0b 53"},
                      BadImage{"header byte", 1000, 9, false, "image header CRC"},
                      BadImage{"header length", 1000, 32, true, "image header length 0, expected 64"},
                      BadImage{"payload length", 1000, 36, true, "image payload length 1000"},
                      BadImage{"payload byte", 1000, 500, false, "image payload CRC"},
                      BadImage{"cut payload", 999, 999, false, "image payload length 936, received 935"},
                      BadImage{"cut header", 63, 999, false, "image of 63 bytes"}),
    [](auto const& each) {
        std::string name = each.param.what;
        for (char& c : name)
            if (c == ' ') c = '_';
        return name;
    });

TEST(RomImage, SoundImageTellsWhatItIs) {
    ImageInfo info;
    EXPECT_EQ("", checkImage(makeImage("DOGWOOD", "6.64", 64, 7), info));
    EXPECT_EQ("DOGWOOD", info.family);
    EXPECT_EQ("6.64", info.version);
    EXPECT_EQ(0U, info.payloadLength);
}

}  // namespace
