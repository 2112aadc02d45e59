// tests/base/random_test.cpp - draws that are the same everywhere, and fair.
#include "base/random.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

namespace vatro {
namespace {

TEST(Random, GivesTheSameNumbersOnEverySystem) {
    Random random(0);
    std::vector<unsigned> drawn;
    drawn.reserve(4);
    for (int i = 0; i < 4; ++i) {
        drawn.push_back(random.below(1000000));
    }
    // From the generator's published numbers for this seed, E220A8397B1DCDAF and so on.
    EXPECT_EQ(drawn, (std::vector<unsigned>{607535, 355700, 545679, 542444}));
}

TEST(Random, DrawsEachNumberEquallyOften) {
    Random random(1);
    std::vector<int> times(7);
    for (int i = 0; i < 70000; ++i) {
        ++times[random.below(7)];
    }
    // Five standard deviations of a fair draw are 463.
    EXPECT_GT(*std::min_element(times.begin(), times.end()), 10000 - 463);
    EXPECT_LT(*std::max_element(times.begin(), times.end()), 10000 + 463);
}

}  // namespace
}  // namespace vatro
