#include "src/stringhelper.h"

#include <gtest/gtest.h>

namespace {

TEST(StringHelperTest, TrimCutsBlanksThenTabs) {
    std::pair<char const*, char const*> const cases[] = {
        {"", ""},
        {"a b", "a b"},
        {"  a b ", "a b"},
        {" \t a \t ", " a "},  // the inner blanks come to light after blanks were cut
        {"\t a \t", " a "},
        // Nothing but the character itself loses only one.
        {" ", ""},
        {"   ", "  "},
        {"\t\t\t", "\t\t"},
        {" \t ", ""},
    };
    for (auto const& [text, trimmed] : cases)
        EXPECT_EQ(trim(text), trimmed) << '"' << text << '"';

    std::string dashes = "--a-b-";
    trimming(dashes, '-');
    EXPECT_EQ(dashes, "a-b");
}

TEST(StringHelperTest, PrefixIsRemovedOnlyFromTheBeginning) {
    struct {
        char const *text, *prefix, *rest;
        bool found;
    } const cases[] = {{"/dev/sg0", "/dev/", "sg0", true},
                       {"/dev", "/dev/", "/dev", false},
                       {"a/dev/", "/dev/", "a/dev/", false},
                       {"same", "same", "", true},
                       {"text", "", "text", true}};
    for (auto const& c : cases) {
        bool found = !c.found;
        EXPECT_EQ(removePrefix(c.text, c.prefix, &found), c.rest);
        EXPECT_EQ(found, c.found) << c.text;
        EXPECT_EQ(removePrefix(c.text, c.prefix), c.rest);
    }
}

TEST(StringHelperTest, TransliterateReplacesEveryOccurrence) {
    EXPECT_EQ(transliterate("_a__b_", '_', ' '), " a  b ");
    EXPECT_EQ(transliterate("", '_', ' '), "");
}

TEST(StringHelperTest, NumbersBeyondTheRangeAreTheNearestInt) {
    std::pair<char const*, int> const cases[] = {{"12", 12},
                                                 {" -3x", -3},
                                                 {"x", 0},
                                                 {"", 0},
                                                 {"4294967296", 2147483647},
                                                 {"-99999999999999999999", -2147483647 - 1}};
    for (auto const& [text, value] : cases)
        EXPECT_EQ(textToInt(text), value) << text;
}

}  // namespace
