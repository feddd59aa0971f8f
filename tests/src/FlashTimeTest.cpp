#include "src/flashTime.h"

#include <gtest/gtest.h>

#include "tests/src/RunFixture.h"

namespace {

using FlashTimeTest = RunTest;

TEST_F(FlashTimeTest, IsRoundedToTheNearestUnitAndAnExactHalfDownwards) {
    struct {
        unsigned int seconds;
        char const* words;
    } const cases[] = {
        {0, "0 seconds"},
        {1, "1 second"},
        {2, "2 seconds"},
        {59, "59 seconds"},
        {60, "1 minute"},
        {89, "1 minute"},
        {90, "1 minute"},
        {91, "2 minutes"},
        {150, "2 minutes"},
        {151, "3 minutes"},
        {3599, "60 minutes"},
        {3600, "1 hour"},
        {5400, "1 hour"},
        {5401, "2 hours"},
        {9000, "2 hours"},
        {9001, "3 hours"},
        // The rounding must not run over the largest value that -xd can set.
        {4294965496U, "1193046 hours"},
        {4294967295U, "1193046 hours"},
    };
    for (auto const& one : cases) {
        gblEstimatedFlashTime = one.seconds;
        EXPECT_EQ(getFlashTime(), one.words) << one.seconds;
    }
}

}  // namespace
