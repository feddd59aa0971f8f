#include "common/string.h"

#include <gtest/gtest.h>

#include "common/istring.h"
#include "tests/common/Printers.h"

namespace {

using Common::istring;
using Common::string;

constexpr unsigned int NPOS = 0xFFFFFFFF;

// What string and istring have in common.
template <class S>
class TextTest : public testing::Test {};
using TextTypes = testing::Types<string, istring>;
TYPED_TEST_SUITE(TextTest, TextTypes);

TYPED_TEST(TextTest, ConstructorsTakeTheLengthTheyAreGiven) {
    EXPECT_EQ(TypeParam().size(), 0u);
    EXPECT_STREQ(TypeParam().c_str(), "");
    EXPECT_EQ(TypeParam("abc").size(), 3u);
    EXPECT_EQ(TypeParam("abc", 2), "ab");
    EXPECT_EQ(TypeParam("abcdef", 2, 3), "cde");
    EXPECT_EQ(TypeParam("abcdef", 2, NPOS), "cdef");
    EXPECT_EQ(TypeParam("a\0b", 3).size(), 3u);
    EXPECT_EQ(TypeParam('x'), "x");
    EXPECT_EQ(TypeParam(static_cast<char const*>(nullptr)).size(), 0u);
}

TYPED_TEST(TextTest, AZeroByteIsKeptByTheConstructorAndLostByAssignment) {
    TypeParam s('\0');
    EXPECT_EQ(s.size(), 1u);
    s = '\0';
    EXPECT_EQ(s.size(), 0u);
    s = 'q';
    EXPECT_EQ(s, "q");
}

TYPED_TEST(TextTest, CopiesShareUntilOneChanges) {
    TypeParam a("text");
    TypeParam b = a;
    TypeParam c;
    c = b;
    EXPECT_EQ(a.c_str(), c.c_str());
    EXPECT_EQ(a.shareCount(), 3u);
    a += "s";
    EXPECT_EQ(a, "texts");
    EXPECT_EQ(a.shareCount(), 1u);
    EXPECT_EQ(b, "text");
    EXPECT_EQ(b.shareCount(), 2u);
    b = "other";
    EXPECT_EQ(c, "text");
    EXPECT_EQ(c.shareCount(), 1u);
    c = a;
    EXPECT_EQ(a.shareCount(), 2u);
    c.clear();
    EXPECT_EQ(a, "texts");
    EXPECT_EQ(a.shareCount(), 1u);
    EXPECT_TRUE(c.empty());
}

TYPED_TEST(TextTest, AChangeMayReadFromTheTextItself) {
    TypeParam s("abcdef");
    s.assign(s.c_str() + 2);
    EXPECT_EQ(s, "cdef");
    s += s;
    EXPECT_EQ(s, "cdefcdef");
    TypeParam const& same = s;
    s = same;
    EXPECT_EQ(s, "cdefcdef");
    EXPECT_EQ(s.shareCount(), 1u);
    s.replace(0, 4, s);
    EXPECT_EQ(s, "cdefcdefcdef");
}

struct SearchCase {
    char const* text;
    char const* needle;
    unsigned int position;
    unsigned int expected;
};

TYPED_TEST(TextTest, FindGivesTheFirstMatchFromThePosition) {
    SearchCase const cases[] = {
        {"abcabc", "bc", 0, 1},   {"abcabc", "bc", 2, 4},   {"abcabc", "bc", 5, NPOS},
        {"abc", "abc", 0, 0},     {"abc", "abcd", 0, NPOS}, {"abc", "x", 0, NPOS},
        {"", "", 0, 0},           {"abc", "", 2, 2},        {"abc", "", 3, 3},
        {"abc", "", 4, NPOS},     {"abc", "c", 2, 2},       {"abc", "c", 3, NPOS},
        {"abc", "c", NPOS, NPOS}, {"aab", "ab", 0, 1},
    };
    for (SearchCase const& c : cases) {
        EXPECT_EQ(TypeParam(c.text).find(c.needle, c.position), c.expected)
            << c.text << " " << c.needle << " " << c.position;
    }
    TypeParam const s("a-b-c");
    EXPECT_EQ(s.find("-b?", 0, 2), 1u);
    EXPECT_EQ(s.find('-', 2), 3u);
    EXPECT_EQ(s.find(TypeParam("c")), 4u);
    EXPECT_EQ(s.find(static_cast<char const*>(nullptr), 1), 1u);
    EXPECT_EQ(TypeParam("a\0b", 3).find('\0'), 1u);
}

TYPED_TEST(TextTest, RfindNeverLooksAtIndexZero) {
    SearchCase const cases[] = {
        {"abc", "a", NPOS, NPOS},     {"xabc", "a", NPOS, 1},     {"aba", "a", NPOS, 2},
        {"abcabc", "bc", NPOS, 4},    {"abcabc", "bc", 3, 1},     {"abcabc", "abc", NPOS, 3},
        {"abcabc", "abc", 2, NPOS},   {"abc", "abc", NPOS, NPOS}, {"abc", "abcd", NPOS, NPOS},
        {"abc", "abcdefgh", 1, NPOS}, {"", "", NPOS, NPOS},       {"", "a", NPOS, NPOS},
        {"abc", "", NPOS, 2},         {"abc", "", 0, NPOS},       {"a/b/c", "/", 2, 1},
        {"abc", "c", 99, 2},          {"/file", "/", NPOS, NPOS},
    };
    for (SearchCase const& c : cases) {
        EXPECT_EQ(TypeParam(c.text).rfind(c.needle, c.position), c.expected)
            << c.text << " " << c.needle << " " << c.position;
    }
    TypeParam const s("a-b-c");
    EXPECT_EQ(s.rfind("-b?", NPOS, 2), 1u);
    EXPECT_EQ(s.rfind('-'), 3u);
    EXPECT_EQ(s.rfind('-', 2), 1u);
    EXPECT_EQ(s.rfind(TypeParam("a")), NPOS);
}

TYPED_TEST(TextTest, SubstrIsClampedAndRunsToTheFirstZeroByteWithoutALength) {
    TypeParam const s("abc\0def", 7);
    EXPECT_EQ(s.substr(1), "bc");
    EXPECT_EQ(s.substr(1, 6).size(), 6u);
    EXPECT_EQ(s.substr(4), "def");
    EXPECT_EQ(s.substr(5, 99), "ef");
    EXPECT_EQ(s.substr(7, 1), "");
    EXPECT_EQ(s.substr(8), "");
    EXPECT_EQ(s.substr(0xFFFFFFF0, 0x20), "");
}

TYPED_TEST(TextTest, ReplaceIsClamped) {
    struct {
        unsigned int position, n;
        char const* replacement;
        char const* expected;
    } const cases[] = {
        {0, 0, "X", "Xabcdef"}, {2, 2, "XYZ", "abXYZef"}, {2, 2, "", "abef"},  {4, 99, "X", "abcdX"},
        {6, 1, "X", "abcdefX"}, {9, 1, "X", "abcdefX"},   {0, NPOS, "X", "X"}, {3, NPOS, "", "abc"},
    };
    for (auto const& c : cases) {
        TypeParam s("abcdef");
        TypeParam const before = s;
        EXPECT_EQ(s.replace(c.position, c.n, c.replacement), c.expected);
        EXPECT_EQ(before, "abcdef");
        EXPECT_EQ(TypeParam("abcdef").replace(c.position, c.n, TypeParam(c.replacement)), c.expected);
    }
}

TYPED_TEST(TextTest, AnIndexOutOfRangeReadsAsZero) {
    TypeParam const s("ab");
    EXPECT_EQ(s[1], 'b');
    EXPECT_EQ(s[2], '\0');
    EXPECT_EQ(s[0xFFFFFFFF], '\0');
}

TYPED_TEST(TextTest, TrimKnowsFourWhiteBytes) {
    struct {
        char const *text, *left, *right, *both;
    } const cases[] = {
        {"", "", "", ""},
        {" \t\r\n", "", "", ""},
        {"a", "a", "a", "a"},
        {" \ta b\r\n", "a b\r\n", " \ta b", "a b"},
        {"\va\f", "\va\f", "\va\f", "\va\f"},  // white for isspace, not here
    };
    for (auto const& c : cases) {
        TypeParam const s(c.text);
        EXPECT_EQ(s.TrimLeft(), c.left);
        EXPECT_EQ(s.TrimRight(), c.right);
        EXPECT_EQ(s.Trim(), c.both);
        EXPECT_EQ(s, c.text);
    }
}

TYPED_TEST(TextTest, CaseConversionGivesANewString) {
    TypeParam const s("aB1-z");
    EXPECT_STREQ(s.LowerCase().c_str(), "ab1-z");
    EXPECT_STREQ(s.UpperCase().c_str(), "AB1-Z");
    EXPECT_STREQ(s.c_str(), "aB1-z");
}

TYPED_TEST(TextTest, SumsAreNewStrings) {
    TypeParam const a("a");
    EXPECT_EQ(a + TypeParam("b"), "ab");
    EXPECT_EQ(a + "b", "ab");
    EXPECT_EQ("b" + a, "ba");
    EXPECT_EQ((TypeParam("x\0", 2) + "y").size(), 3u);
    EXPECT_EQ(a, "a");
}

TYPED_TEST(TextTest, NumbersWrapInTheirWidth) {
    TypeParam const s(" 4294967553x");
    EXPECT_EQ(s.toQWord(), 4294967553ull);
    EXPECT_EQ(s.toWord(), 257u);
    EXPECT_EQ(s.toByte(), 1u);
}

TEST(StringTest, EqualityLooksAtEveryByteAndOrderStopsAtAZeroByte) {
    string const a("a\0b", 3), b("a\0c", 3);
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a != b);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(a == "a");
    EXPECT_FALSE(string("abc") == "ab");
    EXPECT_TRUE(string("ab") < string("abc"));
    EXPECT_TRUE(string("Z") < "a");
    EXPECT_FALSE(string("a") < "a");
    EXPECT_TRUE(string("a") < "\xE9");  // bytes count as unsigned
    EXPECT_FALSE(string("a") == string("A"));
}

TEST(IStringTest, ComparesAndSearchesWithoutCase) {
    EXPECT_TRUE(istring("ABC") == "abc");
    EXPECT_TRUE(istring("ABC") == string("abC"));
    EXPECT_TRUE(istring("ABC") != "abcd");
    EXPECT_EQ(istring("xABCx").find("bc"), 2u);
    EXPECT_EQ(istring("xABCaBc").rfind("Abc"), 4u);
    EXPECT_EQ(string("xABC").find("bc"), NPOS);
}

TEST(IStringTest, NothingIsLess) {
    EXPECT_FALSE(istring("a") < "b");
    EXPECT_FALSE(istring("b") < "a");
    EXPECT_FALSE(istring("a") < istring("b"));
    EXPECT_FALSE(istring("") < "b");
    EXPECT_EQ(Common::stricmp(nullptr, "b"), 0) << "null is an empty text";
    EXPECT_EQ(Common::stricmp("b", nullptr), 0);
}

TEST(IStringTest, AStringIsCopiedUpToItsFirstZeroByte) {
    string const s("ab\0c", 4);
    istring i(s);
    EXPECT_EQ(i.size(), 2u);
    EXPECT_EQ(s.shareCount(), 1u);
    i = "other";
    i = s;
    EXPECT_EQ(i.size(), 2u);
    string const back = istring("x\0y", 3);
    EXPECT_EQ(back.size(), 3u);
}

TEST(IStringTest, HelpersReportADifferenceButNoOrder) {
    EXPECT_EQ(Common::stricmp("abc", "ABC"), 0);
    EXPECT_EQ(Common::stricmp("ab", "ABC"), 0);  // a prefix counts as equal
    EXPECT_EQ(Common::stricmp("", "x"), 0);
    EXPECT_EQ(Common::stricmp("a", "b"), 1);
    EXPECT_EQ(Common::stricmp("b", "a"), 1);
    EXPECT_EQ(Common::memicmp("aB", "Ab", 2), 0);
    EXPECT_EQ(Common::memicmp("ab", "ax", 2), 1);
    EXPECT_EQ(Common::memicmp("a", "x", 0), 0);
}

}  // namespace
