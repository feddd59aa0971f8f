#include "common/conversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "common/bitset.h"
#include "common/module_name.h"
#include "common/time.h"
#include "tests/common/Printers.h"

namespace {

using namespace Conversion;
using Common::string;

TEST(ConversionTest, ToNumberReadsWhatItCanAndWraps) {
    struct {
        char const* text;
        unsigned char byte;
        unsigned short word;
        unsigned int dword;
        unsigned long long qword;
        int integer;
    } const cases[] = {
        {"", 0, 0, 0, 0, 0},
        {"abc", 0, 0, 0, 0, 0},
        {" \t\n\v42xyz", 42, 42, 42, 42, 42},
        {"+7", 7, 7, 7, 7, 7},
        {"-1", 0xFF, 0xFFFF, 0xFFFFFFFF, 0xFFFFFFFFFFFFFFFF, -1},
        {"--1", 0, 0, 0, 0, 0},
        {"- 1", 0, 0, 0, 0, 0},
        {"256", 0, 256, 256, 256, 256},
        {"0x10", 0, 0, 0, 0, 0},
        {"4294967298", 2, 2, 2, 4294967298, 2},
        {"2147483648", 0, 0, 2147483648u, 2147483648u, -2147483647 - 1},
        {"18446744073709551617", 1, 1, 1, 1, 1},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(toNumber<unsigned char>(c.text), c.byte) << c.text;
        EXPECT_EQ(toNumber<unsigned short>(c.text), c.word) << c.text;
        EXPECT_EQ(toNumber<unsigned int>(c.text), c.dword) << c.text;
        EXPECT_EQ(toNumber<unsigned long long>(c.text), c.qword) << c.text;
        EXPECT_EQ(toNumber<int>(c.text), c.integer) << c.text;
    }
    unsigned short out = 1;
    toNumber(out, string("99"));
    EXPECT_EQ(out, 99);
}

TEST(ConversionTest, ToNumberReadsRealNumbers) {
    EXPECT_EQ(toNumber<double>(string(" -1.25e2z")), -125.0);
    EXPECT_EQ(toNumber<float>(string("2.5")), 2.5f);
    EXPECT_EQ(toNumber<double>(string("x")), 0.0);
    EXPECT_TRUE(std::isinf(toNumber<float>(string("-1e300"))));
    EXPECT_LT(toNumber<float>(string("-1e300")), 0.0f);
}

TEST(ConversionTest, ToStringCopiesTextAndWritesDecimals) {
    char text[] = "abc";
    unsigned char bytes[] = {'x', 'y', 0};
    EXPECT_EQ(toString(text), "abc");
    EXPECT_EQ(toString(bytes), "xy");
    EXPECT_EQ(toString(string("s")), "s");
    EXPECT_EQ(toString(4294967295u), "4294967295");
    EXPECT_EQ(toString(static_cast<unsigned char>('A')), "65");
}

TEST(ConversionTest, HexIsMostSignificantByteFirst) {
    EXPECT_EQ(hexToString(0x89ABCDEFu), "89ABCDEF");
    EXPECT_EQ(hexToString(static_cast<unsigned char>(0x0A)), "0A");
    EXPECT_EQ(hexToString(static_cast<char>(-2)), "FE");
    EXPECT_EQ(hexToString(-2), "FFFFFFFE");
    unsigned char const bytes[] = {0x01, 0xAB, 0xF0};
    EXPECT_EQ(arrayToString(bytes, 3, ":"), "01:AB:F0");
    EXPECT_EQ(arrayToString(bytes, 1, ":"), "01");
    EXPECT_EQ(arrayToString(bytes, 0, ":"), "");
}

TEST(ConversionTest, HexTextBecomesBytes) {
    EXPECT_EQ(hexStringToInt("aF9"), 0xAF);
    EXPECT_EQ(hexStringToInt("7e"), 0x7E);
    hexStringToInt("");  // arbitrary, but reads nothing outside the text
    EXPECT_EQ(stringToArray("00Ff7"), string("\0\xFF", 2));
    EXPECT_EQ(stringToArray("").size(), 0u);

    unsigned char out[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    EXPECT_EQ(stringToArray("0102030405", out, 3), 3u);
    EXPECT_EQ(std::memcmp(out, "\x01\x02\x03\xEE", 4), 0);
    EXPECT_EQ(stringToArray("AABBC", out, 4), 2u);
    EXPECT_EQ(std::memcmp(out, "\xAA\xBB\x03\xEE", 4), 0);
}

TEST(ConversionTest, XtoiReadsFromTheLastDigit) {
    struct {
        char const* text;
        int result;
        unsigned int out;
    } const cases[] = {
        {"0", 0, 0},      {"89abCDEF", 0, 0x89ABCDEF}, {"", 1, 0},   {"123456789", 2, 0}, {"12G", 4, 0},
        {"G12", 4, 0x12}, {"1x34", 4, 0x34},           {" 1", 4, 1},
    };
    for (auto const& c : cases) {
        unsigned int out = 0xDEADBEEF;
        EXPECT_EQ(xtoi(c.text, out), c.result) << c.text;
        EXPECT_EQ(out, c.out) << c.text;
    }
}

TEST(ConversionTest, AddressesHaveTheirText) {
    unsigned char const mac[] = {0x00, 0x1A, 0xFF, 0x03, 0x40, 0x5C};
    EXPECT_EQ(MacToString(mac), "00:1A:FF:03:40:5C");
    unsigned char const ip[] = {192, 168, 0, 255};
    EXPECT_EQ(toIpV4String(ip), "192.168.0.255");
    unsigned int word = 0;
    std::memcpy(&word, ip, 4);
    EXPECT_EQ(toIpV4String(word), "192.168.0.255");
}

TEST(ConversionTest, IpToNumberWantsFourBytes) {
    struct {
        char const* text;
        bool good;
    } const cases[] = {
        {"1.2.3.255", true},  {" 1. 2.3.4 tail", true},    {"1.2.3", false},   {"1.2.3.", false},
        {"1.2.3.256", false}, {"1.2.-3.4", false},         {"a.2.3.4", false}, {"", false},
        {"1,2,3,4", false},   {"4294967297.2.3.4", false}, {"+1.2.3.4", true},
    };
    for (auto const& c : cases) {
        unsigned char out[4] = {9, 9, 9, 9};
        EXPECT_EQ(ipToNumber(out, c.text), c.good) << c.text;
        EXPECT_EQ(out[0], c.good ? 1 : 9) << c.text;
    }
    unsigned char out[4];
    ASSERT_TRUE(ipToNumber(out, "10.20.30.40"));
    EXPECT_EQ(std::memcmp(out, "\x0A\x14\x1E\x28", 4), 0);
}

TEST(ConversionTest, DatesAreBigEndianAndTimesAreNot) {
    unsigned char const date[] = {0x07, 0xE8, 9, 10};
    EXPECT_EQ(dateToString(date), "2024-09-10");
    EXPECT_EQ(dateToString(0x07E80C1Fu), "2024-12-31");
    unsigned char const noDate[] = {0, 0, 0, 0};
    EXPECT_EQ(dateToString(noDate), "0-00-00");
    unsigned char const time[] = {23, 59, 58, 0};
    EXPECT_EQ(timeToString(time), "0:0:0");
}

TEST(ConversionTest, HexToVersionKeepsDigitsAndPoints) {
    EXPECT_EQ(hexToVersion(reinterpret_cast<unsigned char const*>("1.2a")), "1.2");
    EXPECT_EQ(hexToVersion(reinterpret_cast<unsigned char const*>("\0 9.")), "9.");
}

TEST(ConversionTest, ClampPercentageGoesToTheNearestFive) {
    struct {
        unsigned char in, out;
    } const cases[] = {{0, 0},     {2, 0},     {3, 5},     {97, 95},  {98, 100},
                       {100, 100}, {252, 250}, {254, 255}, {255, 255}};
    for (auto const& c : cases)
        EXPECT_EQ(clampPercentage(c.in), c.out) << int{c.in};
}

TEST(ConversionTest, CommonMultiplesAreBounded) {
    struct {
        unsigned int a, b, expected;
    } const cases[] = {
        {4, 6, 12}, {1, 7, 7},         {7, 7, 7},
        {0, 6, 0},  {6, 0, 0},         {0, 0, 1},
        {0, 1, 1},  {65536, 65537, 0}, {65535, 65537, 4294967295u},
    };
    for (auto const& c : cases)
        EXPECT_EQ(leastCommonMultiple(c.a, c.b), c.expected) << c.a << " " << c.b;
    EXPECT_EQ(LCM<unsigned long long>(65536, 65537), 4295032832ull);
    EXPECT_EQ(LCM<unsigned long long>(0, 512), 0u);
}

TEST(ConversionTest, StringToIndexGivesTheLengthForAnAbsentText) {
    char const* table[] = {"zero", "one", "one"};
    EXPECT_EQ(stringToIndex(table, table + 3, "one"), 1u);
    EXPECT_EQ(stringToIndex(table, table + 3, "On"), 3u);
    EXPECT_EQ(stringToIndex(table, table, "zero"), 0u);
    table[0] = nullptr;
    EXPECT_EQ(stringToIndex(table, table + 3, "one"), 1u);
    EXPECT_EQ(stringToIndex(table, table + 3, nullptr), 3u);
}

TEST(SmallTypesTest, ABitsetRefusesPositionsOutside) {
    Common::bitset<256> pages;
    EXPECT_FALSE(pages.any());
    for (unsigned int bit : {0u, 31u, 32u, 255u, 256u, 0xFFFFFFFFu})
        pages.set(bit);
    EXPECT_EQ(pages.count(), 4u);
    EXPECT_TRUE(pages.test(31) && pages[32] && pages[255]);
    EXPECT_FALSE(pages.test(30) || pages.test(33) || pages.test(256));
    pages.reset(32);
    EXPECT_FALSE(pages[32]);
    EXPECT_TRUE(pages[31]);
    pages.reset();
    EXPECT_EQ(pages, Common::bitset<256>());
    Common::bitset<3> small;
    small.set(3);
    EXPECT_FALSE(small.any());
}

TEST(SmallTypesTest, TimeIsLocalTime) {
    setenv("TZ", "XYZ-2", 1);  // two hours east
    tzset();
    EXPECT_EQ(Common::time(1704067199).toString(), "2024:01:01:01:59:59");
    EXPECT_EQ(Common::time(0).toString(), "1970:01:01:02:00:00");
    unsetenv("TZ");
    tzset();
}

}  // namespace
