#include "GoldenVectors.h"
#include "SeededGenerator.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <numeric>

namespace torvo::test {
namespace {

TEST(SeededGenerator, matchesTheGoldenDraws) {
    for (const auto& row : golden::draws) {
        SeededGenerator random(row.seed);
        for (const auto expected : row.values)
            EXPECT_EQ(random.next(), expected) << "seed " << row.seed;
    }
}

TEST(SeededGenerator, replacesSeedZeroByTheGamma) {
    SeededGenerator zero(0);
    SeededGenerator gamma(0x9E3779B97F4A7C15);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(zero.next(), gamma.next());
}

TEST(SeededGenerator, matchesTheGoldenBoundedDrawsAndTheirCount) {
    int rejections = 0;
    for (const auto& row : golden::boundedDraws) {
        SeededGenerator random(golden::boundedSeed);
        for (const auto expected : row.values)
            EXPECT_EQ(random.below(row.bound), expected) << "bound " << row.bound;
        EXPECT_EQ(random.next(), row.nextDraw) << "bound " << row.bound;
        rejections += row.rejections;
    }
    ASSERT_GT(rejections, 10) << "the table must hold bounds that reject";
}

TEST(SeededGenerator, matchesTheGoldenShufflesWithOneDrawFewerThanItems) {
    for (const auto& row : golden::shuffles) {
        std::vector<int> items(row.length);
        std::iota(items.begin(), items.end(), 0);
        SeededGenerator random(golden::shuffleSeed);
        random.shuffle(items);
        EXPECT_EQ(items, row.order) << row.length << " items";
        EXPECT_EQ(random.next(), row.nextDraw) << row.length << " items";
    }
}

RC_GTEST_PROP(SeededGenerator, staysBelowTheBound, (std::uint64_t seed)) {
    const auto bound = *rc::gen::suchThat<std::uint64_t>([](auto n) { return n > 0; });
    SeededGenerator random(seed);
    for (int i = 0; i < 20; ++i)
        RC_ASSERT(random.below(bound) < bound);
}

RC_GTEST_PROP(SeededGenerator, shufflesToAPermutation,
              (std::uint64_t seed, std::vector<int> items)) {
    auto shuffled = items;
    SeededGenerator(seed).shuffle(shuffled);
    std::ranges::sort(items);
    std::ranges::sort(shuffled);
    RC_ASSERT(shuffled == items);
}

TEST(SeededGeneratorDeathTest, abortsOnABoundOfZero) {
    SeededGenerator random(1);
    EXPECT_DEATH(random.below(0),
                 "Broken precondition: a bounded draw needs a bound of at least 1");
}

} // namespace
} // namespace torvo::test
