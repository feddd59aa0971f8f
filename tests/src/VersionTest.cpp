#include "src/version.h"

#include <gtest/gtest.h>

namespace {

TEST(VersionTest, FourCharactersMakeTheNumber) {
    struct {
        char const* text;
        float value;
    } const cases[] = {
        {"", 0.0f},         {"abcd", 0.0f},   {"1.50", 1.5f},   {"1.5", 1.5f},   {"2.14", 2.14f},
        {"2.14x", 2.14f},   {"10.12", 10.1f}, {"10.18", 10.1f}, {"1.2a", 0.12f}, {"a1.2", 1.2f},
        {"1..2", 0.12f},    {".123", 0.123f}, {"1.", 1.0f},     {"....", 0.0f},  {"9999", 9999.0f},
        {"12345", 1234.0f}, {" 1.2", 1.2f},   {"1.2 ", 0.12f},  {"-1.2", 1.2f},  {"0A1B", 1.0f},
    };
    for (auto const& c : cases)
        EXPECT_EQ(VersionToFloat(c.text), c.value) << c.text;
}

TEST(VersionTest, ComparisonAllowsForRounding) {
    struct {
        char const *a, *b;
        bool equal, less;
    } const cases[] = {
        {"2.14", "2.140", true, false}, {"2.14", "2.14x", true, false}, {"1.50", "1.5", true, false},
        {"2.1", "2.14", false, true},   {"2.14", "2.1", false, false},  {"10.12", "10.18", true, false},
        {"9.99", "10.0", false, true},  {"", "0.01", false, true},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(VersionsEqual(VersionToFloat(c.a), VersionToFloat(c.b)), c.equal) << c.a << ' ' << c.b;
        EXPECT_EQ(VersionsLT(VersionToFloat(c.a), VersionToFloat(c.b)), c.less) << c.a << ' ' << c.b;
    }
    EXPECT_TRUE(VersionsEqual(1.0f, 1.000009f));
    EXPECT_FALSE(VersionsLT(1.0f, 1.000009f));
    EXPECT_FALSE(VersionsEqual(1.0f, 1.00002f));
    EXPECT_TRUE(VersionsLT(1.0f, 1.00002f));
}

}  // namespace
