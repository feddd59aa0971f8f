#include "common/any.h"

#include <gtest/gtest.h>

#include "common/list.h"
#include "common/map.h"
#include "tests/common/Printers.h"

namespace {

using Common::Any;
using Common::string;

struct Opaque {
    int n = 0;
};

struct Named : Common::Convertible {
    virtual ~Named() = default;
    string toString() const override { return "named"; }
};

TEST(AnyTest, EachTypeHasItsText) {
    struct {
        Any any;
        char const* expected;
    } const cases[] = {
        {Any(), ""},
        {string("text"), "text"},
        {"literal", "literal"},
        {static_cast<unsigned char>(200), "200"},
        {static_cast<unsigned short>(65535), "65535"},
        {4294967295u, "4294967295"},
        {-5, "-5"},
        {0ull, "0"},
        {18446744073709551615ull, "18446744073709551615"},
        {10000000000ull, "10000000000"},
        {1.5, "1.500000"},
        {Opaque{3}, ""},
        {Named(), "named"},
        {Common::map<string, int>(), ""},
        {Common::list<int>(), ""},
    };
    int row = 0;
    for (auto const& c : cases) {
        EXPECT_EQ(c.any.toString(), c.expected) << "row " << row;
        ++row;
    }
}

TEST(AnyTest, AGreatDoubleIsWrittenInWhole) {
    string const text = Any(-1.7e308).toString();
    EXPECT_EQ(text.size(), 1u + 309u + 7u);
    EXPECT_EQ(text.substr(0, 4), "-169");
    EXPECT_EQ(text.substr(text.size() - 7, 7), ".000000");
}

TEST(AnyTest, TheWrongTypeReadsAsADefaultValue) {
    Any const any(7u);
    EXPECT_EQ(any.value<unsigned int>(), 7u);
    EXPECT_EQ(any.value<int>(), 0);
    EXPECT_EQ(any.value<unsigned short>(), 0);
    EXPECT_EQ(any.value<string>(), "");
    EXPECT_EQ(any.toString(), "7");
    EXPECT_EQ(Any().value<double>(), 0.0);
    EXPECT_EQ(Any("text").value<string>(), "");  // a literal isn't a string
    EXPECT_STREQ(Any("text").value<char const*>(), "text");
    unsigned int const converted = any;
    EXPECT_EQ(converted, 7u);
    string const text = any;
    EXPECT_EQ(text, "");
}

TEST(AnyTest, CopiesCloneTheValue) {
    Any a(string("one"));
    Any b(a);
    Any c;
    c = a;
    EXPECT_NE(a.held(), b.held());
    a = Any(2);
    a = *&a;
    EXPECT_EQ(a.toString(), "2");
    EXPECT_EQ(b.toString(), "one");
    EXPECT_EQ(c.toString(), "one");
    c = Any();
    EXPECT_TRUE(c.empty());
    EXPECT_TRUE(Any(c).empty());
}

TEST(AnyTest, ValuesAreEqualOnlyWithinOneType) {
    EXPECT_TRUE(*Any(5).held() == *Any(5).held());
    EXPECT_FALSE(*Any(5).held() == *Any(6).held());
    EXPECT_FALSE(*Any(5).held() == *Any(5u).held());
    EXPECT_TRUE(*Any(string("a")).held() == *Any(string("a")).held());
    Any const opaque(Opaque{1});
    EXPECT_TRUE(*opaque.held() == *opaque.held());
    EXPECT_FALSE(*opaque.held() == *Any(opaque).held());
}

}  // namespace
