#include "BankGenerator.h"
#include "GoldenVectors.h"
#include "Models/GenerationError.h"
#include "Samples.h"
#include "Thrown.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>

namespace torvo::test {
namespace {

struct Counts {
    std::size_t kick = 0;
    std::size_t clap = 0;
    std::size_t closedHat = 0;
    std::size_t openHat = 0;
    std::size_t snare = 0;
    std::size_t perc = 0;
};

RoleBuckets drumBuckets(const Counts& counts) {
    return {.kick = bucketOf(ChannelRole::kick, counts.kick),
            .closedHat = bucketOf(ChannelRole::closedHat, counts.closedHat),
            .openHat = bucketOf(ChannelRole::openHat, counts.openHat),
            .snare = bucketOf(ChannelRole::snare, counts.snare),
            .clap = bucketOf(ChannelRole::clap, counts.clap),
            .perc = bucketOf(ChannelRole::perc, counts.perc),
            .loop = {},
            .stab = {}};
}

RoleBuckets loops(std::size_t count) {
    RoleBuckets buckets;
    buckets.loop = bucketOf(ChannelRole::loop, count);
    return buckets;
}

RoleBuckets stabs(std::size_t count) {
    RoleBuckets buckets;
    buckets.stab = bucketOf(ChannelRole::stab, count);
    return buckets;
}

constexpr Counts fullDrums{
    .kick = 5, .clap = 2, .closedHat = 3, .openHat = 1, .snare = 4, .perc = 7};
constexpr Counts percOnly{.kick = 1, .perc = 3};

std::vector<BankRecipe> make(const RoleBuckets& buckets, GenerationMode mode, std::int64_t count,
                             std::uint64_t seed,
                             const std::optional<GenerationTemplate>& generationTemplate = {}) {
    return BankGenerator().makeRecipes(buckets, mode, generationTemplate, count,
                                       BankNameScheme("kit"), seed);
}

/// The format of the golden vectors: the names of channels 1 to 8, then "reused" if it applies.
std::string line(const BankRecipe& recipe) {
    std::string text;
    for (const auto& [channel, sample] : recipe.channels)
        text += (text.empty() ? "" : " ") + sample.displayName;
    return text + (recipe.reusedSamples ? " reused" : "");
}

std::vector<std::string> lines(const std::vector<BankRecipe>& recipes) {
    std::vector<std::string> all;
    for (const auto& recipe : recipes)
        all.push_back(line(recipe));
    return all;
}

TEST(BankGenerator, matchesTheGoldenRuns) {
    struct Row {
        const char* name;
        RoleBuckets buckets;
        GenerationMode mode;
        std::uint64_t seed;
        const std::vector<std::string>& expected;
    };
    const Row rows[] = {
        {"drums", drumBuckets(fullDrums), GenerationMode::drums, 0x0123456789ABCDEF,
         golden::fullDrums},
        {"drums of one kick and three percs", drumBuckets(percOnly), GenerationMode::drums, 42,
         golden::percOnlyDrums},
        {"drums of seed 0", drumBuckets(fullDrums), GenerationMode::drums, 0,
         golden::zeroSeedDrums},
        {"eleven loops", loops(11), GenerationMode::loops, 0xFFFFFFFFFFFFFFFF, golden::elevenLoops},
        {"eight stabs", stabs(8), GenerationMode::stabs, 3, golden::eightStabs},
    };
    for (const auto& row : rows) {
        const auto count = static_cast<std::int64_t>(row.expected.size());
        EXPECT_EQ(lines(make(row.buckets, row.mode, count, row.seed)), row.expected) << row.name;
    }
}

TEST(BankGenerator, fillsIndexNameSeedAndSampleOfRecipes) {
    const auto buckets = drumBuckets(fullDrums);
    const auto recipes = make(buckets, GenerationMode::drums, 3, 9);
    ASSERT_EQ(recipes.size(), 3U);
    for (std::size_t i = 0; i < recipes.size(); ++i) {
        EXPECT_EQ(recipes[i].bankIndex, static_cast<std::int64_t>(i) + 1);
        EXPECT_EQ(recipes[i].shortName, "Kit00" + std::to_string(i + 1));
        EXPECT_EQ(recipes[i].seed, 9U);
        EXPECT_EQ(recipes[i].channels.size(), 8U);
    }
    EXPECT_EQ(recipes[0].channels.at(4), buckets.openHat[0]);
}

TEST(BankGenerator, replacesSeedZeroByTheGammaButRecordsZero) {
    const auto buckets = drumBuckets(fullDrums);
    const auto zero = make(buckets, GenerationMode::drums, 20, 0);
    auto gamma = make(buckets, GenerationMode::drums, 20, 0x9E3779B97F4A7C15);
    for (auto& recipe : gamma) {
        EXPECT_EQ(recipe.seed, 0x9E3779B97F4A7C15U);
        recipe.seed = 0;
    }
    EXPECT_EQ(zero, gamma);
}

TEST(BankGenerator, isDeterministic) {
    const auto buckets = drumBuckets(fullDrums);
    EXPECT_EQ(make(buckets, GenerationMode::drums, 99, 77),
              make(buckets, GenerationMode::drums, 99, 77));
    EXPECT_NE(lines(make(buckets, GenerationMode::drums, 99, 77)),
              lines(make(buckets, GenerationMode::drums, 99, 78)));
}

TEST(BankGenerator, reportsMissingSamples) {
    struct Row {
        const char* name;
        RoleBuckets buckets;
        GenerationMode mode;
        std::optional<GenerationError> error;
    };
    auto everythingButKick = drumBuckets(fullDrums);
    everythingButKick.kick.clear();
    const Row rows[] = {
        {"a kick and three percs", drumBuckets(percOnly), GenerationMode::drums, std::nullopt},
        {"no kick", everythingButKick, GenerationMode::drums,
         GenerationError::requiredRoleMissing(ChannelRole::kick)},
        {"two percs", drumBuckets({.kick = 1, .perc = 2}), GenerationMode::drums,
         GenerationError::insufficientPercussion(2)},
        {"only other drums", drumBuckets({.kick = 1, .clap = 9, .snare = 9}), GenerationMode::drums,
         GenerationError::insufficientPercussion(0)},
        // The kick is checked first.
        {"nothing",
         {},
         GenerationMode::drums,
         GenerationError::requiredRoleMissing(ChannelRole::kick)},
        {"seven loops", loops(7), GenerationMode::loops, GenerationError::insufficientLoops(7)},
        {"eight loops", loops(8), GenerationMode::loops, std::nullopt},
        {"loops for stabs", loops(8), GenerationMode::stabs, GenerationError::insufficientStabs(0)},
        {"seven stabs", stabs(7), GenerationMode::stabs, GenerationError::insufficientStabs(7)},
        {"eight stabs", stabs(8), GenerationMode::stabs, std::nullopt},
        {"stabs for loops", stabs(8), GenerationMode::loops, GenerationError::insufficientLoops(0)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(BankGenerator().canGenerate(row.buckets, row.mode), !row.error) << row.name;
        EXPECT_EQ(thrown<GenerationError>([&] { make(row.buckets, row.mode, 1, 1); }), row.error)
            << row.name;
    }
}

TEST(BankGenerator, fillsMissingDrumsFromThePercs) {
    const auto recipes = make(drumBuckets(percOnly), GenerationMode::drums, 10, 5);
    for (const auto& recipe : recipes) {
        EXPECT_EQ(recipe.channels.at(1).role, ChannelRole::kick);
        std::set<std::string> firstThree;
        for (std::int64_t channel = 2; channel <= 8; ++channel)
            EXPECT_EQ(recipe.channels.at(channel).role, ChannelRole::perc);
        for (std::int64_t channel = 2; channel <= 4; ++channel)
            firstThree.insert(recipe.channels.at(channel).displayName);
        // Only three samples: the fourth pick repeats one, so every bank is marked.
        EXPECT_EQ(firstThree.size(), 3U);
        EXPECT_TRUE(recipe.reusedSamples);
    }
}

TEST(BankGenerator, marksOnlyTheBankInWhichThePoolWraps) {
    // Sixteen loops fill two banks; the third starts over.
    const auto recipes = make(loops(16), GenerationMode::loops, 6, 5);
    const bool expected[] = {false, false, true, false, true, false};
    for (std::size_t i = 0; i < recipes.size(); ++i)
        EXPECT_EQ(recipes[i].reusedSamples, expected[i]) << "bank " << i + 1;
}

TEST(BankGenerator, treatsTwoPathsOfOneFileAsOneSample) {
    auto buckets = loops(9);
    // The second path names the same file with a ".." component; no bank may contain both.
    buckets.loop[1].sourceURL = FileURL("/Kit/other/../loop1.wav");
    for (const auto& recipe : make(buckets, GenerationMode::loops, 30, 8)) {
        std::set<std::string> paths;
        for (const auto& [channel, sample] : recipe.channels)
            paths.insert(sample.sourceURL.standardized().absoluteString());
        EXPECT_EQ(paths.size(), 8U);
    }
}

TEST(BankGenerator, fillsSlotsInChannelOrder) {
    auto reversed = generationTemplate(GenerationMode::drums);
    std::ranges::reverse(reversed.slots);
    EXPECT_EQ(make(drumBuckets(fullDrums), GenerationMode::drums, 20, 4, reversed),
              make(drumBuckets(fullDrums), GenerationMode::drums, 20, 4));
}

TEST(BankGenerator, usesTheLastSlotOfAChannel) {
    // Enough slots to expose an unstable sort.
    for (const auto last : {ChannelRole::clap, ChannelRole::kick}) {
        const auto others = last == ChannelRole::kick ? ChannelRole::clap : ChannelRole::kick;
        GenerationTemplate crowded{"Crowded", {}};
        for (int turn = 0; turn < 10; ++turn) {
            for (std::int64_t channel = 8; channel >= 1; --channel)
                crowded.slots.push_back({channel, turn == 9 ? last : others, "Slot"});
        }
        for (const auto& recipe :
             make(drumBuckets(fullDrums), GenerationMode::drums, 3, 1, crowded)) {
            ASSERT_EQ(recipe.channels.size(), 8U);
            for (const auto& [channel, sample] : recipe.channels)
                EXPECT_EQ(sample.role, last) << channel;
        }
    }
}

TEST(BankGenerator, refusesSlotsThatTheModeCannotFill) {
    struct Row {
        GenerationMode mode;
        ChannelRole slot;
        const char* message; ///< empty when the slot is valid
    };
    const Row rows[] = {
        {GenerationMode::drums, ChannelRole::loop, "Loop slots are not valid in Drums mode."},
        {GenerationMode::drums, ChannelRole::stab, "Stab slots are not valid in Drums mode."},
        {GenerationMode::loops, ChannelRole::stab, "Only loop slots are valid in Loops mode."},
        {GenerationMode::loops, ChannelRole::kick, "Only loop slots are valid in Loops mode."},
        {GenerationMode::stabs, ChannelRole::loop, "Only stab slots are valid in Stabs mode."},
        {GenerationMode::stabs, ChannelRole::perc, "Only stab slots are valid in Stabs mode."},
    };
    auto buckets = drumBuckets(fullDrums);
    buckets.loop = bucketOf(ChannelRole::loop, 8);
    buckets.stab = bucketOf(ChannelRole::stab, 8);
    for (const auto& row : rows) {
        auto odd = generationTemplate(row.mode);
        odd.slots[7].role = row.slot;
        EXPECT_EQ(thrown<GenerationError>([&] { make(buckets, row.mode, 2, 1, odd); }),
                  GenerationError::exportFailed(row.message))
            << row.message;
    }
}

TEST(BankGenerator, acceptsTemplatesWithFewerSlots) {
    const GenerationTemplate two{"Two", {{5, ChannelRole::loop, "A"}, {2, ChannelRole::loop, "B"}}};
    const auto recipes = make(loops(8), GenerationMode::loops, 4, 1, two);
    for (const auto& recipe : recipes) {
        EXPECT_EQ(recipe.channels.size(), 2U);
        EXPECT_TRUE(recipe.channels.contains(2) && recipe.channels.contains(5));
        EXPECT_FALSE(recipe.reusedSamples);
    }
}

TEST(BankGenerator, makesBanksWithoutChannelsForATemplateWithoutSlots) {
    for (const auto mode : {GenerationMode::drums, GenerationMode::loops}) {
        auto buckets = drumBuckets(percOnly);
        buckets.loop = bucketOf(ChannelRole::loop, 8);
        const auto recipes = make(buckets, mode, 2, 5, GenerationTemplate{"None", {}});
        EXPECT_EQ(recipes, (std::vector<BankRecipe>{{1, "Kit001", {}, 5, false},
                                                    {2, "Kit002", {}, 5, false}}));
    }
}

TEST(BankGenerator, usesAFileInTwoBucketsOncePerBank) {
    auto buckets = drumBuckets({.kick = 1, .clap = 1, .snare = 1, .perc = 5});
    const auto shared = sampleAt("/Kit/both.wav", "both");
    // The same file under a different spelling of its path.
    auto again = shared;
    again.sourceURL = FileURL("/Kit/Snares/../both.wav");
    buckets.clap.push_back(shared);
    buckets.snare.push_back(again);
    constexpr std::int64_t bankCount = 50;
    std::int64_t uses = 0;
    for (const auto& recipe : make(buckets, GenerationMode::drums, bankCount, 11)) {
        std::set<std::string> paths;
        for (const auto& [channel, sample] : recipe.channels)
            paths.insert(sample.sourceURL.standardized().nativePath());
        EXPECT_EQ(paths.size(), 8U) << recipe.bankIndex;
        uses += paths.contains("/Kit/both.wav") ? 1 : 0;
    }
    // It recurs in later banks: the rule applies within one bank.
    EXPECT_GT(uses, bankCount / 2);
}

TEST(BankGeneratorDeathTest, abortsOnABankCountOfZero) {
    EXPECT_DEATH(make(loops(8), GenerationMode::loops, 0, 1),
                 "Broken precondition: a run has at least one bank");
}

} // namespace
} // namespace torvo::test
