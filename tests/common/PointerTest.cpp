#include <gtest/gtest.h>

#include "common/cloneable.h"
#include "common/copy_ptr.h"
#include "common/shared_ptr.h"

namespace {

using Common::copy_ptr;
using Common::shared_ptr;

int alive = 0;

struct Base {
    Base() { ++alive; }
    Base(Base const&) { ++alive; }
    virtual ~Base() { --alive; }
};
struct Derived : Base {
    int value = 7;
    shared_ptr<Derived> next;
};
struct Other : Base {};

class SharedPtrTest : public testing::Test {
  protected:
    void SetUp() override { alive = 0; }
    void TearDown() override { EXPECT_EQ(alive, 0); }
};

TEST_F(SharedPtrTest, ADerivedObjectDiesWithTheLastPointerOfAnyType) {
    shared_ptr<Base> base;
    {
        shared_ptr<Derived> derived(new Derived);
        base = derived;
        shared_ptr<Base> const copy(derived);
        EXPECT_EQ(base.useCount(), 3);
        EXPECT_TRUE(base == derived);
    }
    EXPECT_EQ(base.useCount(), 1);
    EXPECT_EQ(alive, 1);
    base = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST_F(SharedPtrTest, ANullPointerHasACountOfItsOwn) {
    shared_ptr<Base> a;
    shared_ptr<Base> b(static_cast<Base*>(nullptr));
    EXPECT_EQ(a.useCount(), 1);
    EXPECT_TRUE(a == nullptr && a == b && !a);
    shared_ptr<Base> const c = a;
    EXPECT_EQ(a.useCount(), 2);
    a = shared_ptr<Base>(new Derived);
    EXPECT_TRUE(a != nullptr && a != b && a);
    EXPECT_EQ(c.useCount(), 1);
}

TEST_F(SharedPtrTest, AssignmentFromAMemberOfTheDyingObjectIsSafe) {
    shared_ptr<Derived> list(new Derived);
    list->next = shared_ptr<Derived>(new Derived);
    list->next->value = 8;
    list = list->next;
    EXPECT_EQ(list->value, 8);
    EXPECT_EQ(alive, 1);
    shared_ptr<Derived> const& same = list;
    list = same;
    EXPECT_EQ(list.useCount(), 1);
}

TEST_F(SharedPtrTest, CastsShareTheCountUnlessTheyFail) {
    shared_ptr<Base> const base(new Derived);
    shared_ptr<Derived> const cast = Common::dynamic_pointer_cast<Derived>(base);
    ASSERT_TRUE(cast != nullptr);
    EXPECT_EQ((*cast).value, 7);
    shared_ptr<Derived> const fixed = static_pointer_cast<Derived>(base);
    EXPECT_EQ(base.useCount(), 3);
    shared_ptr<Other> const failed = dynamic_pointer_cast<Other>(base);
    EXPECT_TRUE(failed == nullptr);
    EXPECT_EQ(base.useCount(), 3);
    EXPECT_EQ(failed.useCount(), 1);
}

struct Record {
    unsigned int a;
    unsigned short b;
};

TEST(CopyPtrTest, CopiesTheBlockDeeply) {
    copy_ptr<Record> const first(new Record{0x89ABCDEF, 0x1234});
    copy_ptr<Record> second(first);
    second->a = 1;
    EXPECT_EQ(first->a, 0x89ABCDEFu);
    EXPECT_EQ(second->b, 0x1234);
    second = first;
    EXPECT_EQ((*second).a, 0x89ABCDEFu);
    EXPECT_NE(second.get(), first.get());
    second = *&second;
    EXPECT_EQ(second->a, 0x89ABCDEFu);
}

TEST(CopyPtrTest, ArraysKeepTheirFormThroughCopies) {
    copy_ptr<unsigned char> bytes(new unsigned char[3]{1, 2, 3}, 3);
    copy_ptr<unsigned char> const one(new unsigned char[1]{9}, 1, true);
    EXPECT_EQ(bytes.sizeInBytes(), 3u);
    bytes = one;  // a wrong form of delete is seen by the address sanitizer
    EXPECT_EQ(bytes[0], 9);
    EXPECT_TRUE(bytes.isArray());
    EXPECT_EQ(bytes.count(), 1u);
}

TEST(CopyPtrTest, CopyTakesTheStoredNumberOfBytes) {
    unsigned char const source[] = {0x78, 0x56, 0x34, 0x12, 0xFF, 0xFF};
    copy_ptr<unsigned short> words(new unsigned short[2], 2);
    words.Copy(source);
    EXPECT_EQ(words[0], 0x5678);
    EXPECT_EQ(words[1], 0x1234);
    words.Copy(words.get());
    EXPECT_EQ(words[1], 0x1234);
    words.Release();
    EXPECT_FALSE(words);
    words.Release();
    copy_ptr<unsigned short> const empty(words);
    EXPECT_FALSE(empty);
    EXPECT_FALSE(copy_ptr<Record>(copy_ptr<Record>()));
}

class Shape {
  public:
    virtual ~Shape() = default;
    shared_ptr<Shape> clone() const { return cloneImpl(); }
    int sides() const { return m_sides; }

  protected:
    explicit Shape(int sides) : m_sides(sides) {}
    virtual shared_ptr<Shape> cloneImpl() const = 0;

  private:
    int m_sides;
};
class Square : public Common::CloneableInherit<Shape, shared_ptr<Shape>, Square> {
  public:
    explicit Square(char const* label) : CloneableInherit(4), m_label(label) {}
    char const* m_label;
};

TEST(CloneableTest, AClonehasTheMostDerivedTypeAndItsState) {
    Square const square("s");
    shared_ptr<Shape> const copy = static_cast<Shape const&>(square).clone();
    shared_ptr<Square> const cast = Common::dynamic_pointer_cast<Square>(copy);
    ASSERT_TRUE(cast != nullptr);
    EXPECT_NE(cast.get(), &square);
    EXPECT_STREQ(cast->m_label, "s");
    EXPECT_EQ(cast->sides(), 4);
}

}  // namespace
