#include "BankGenerator.h"
#include "Samples.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace torvo::test {
namespace {

/// The sample names in the order in which they were drawn.
std::vector<std::string> handedOut(const std::vector<BankRecipe>& recipes) {
    std::vector<std::string> names;
    for (const auto& recipe : recipes) {
        for (const auto& [channel, sample] : recipe.channels)
            names.push_back(sample.displayName);
    }
    return names;
}

std::vector<BankRecipe> loopRecipes(std::size_t available, std::int64_t banks, std::uint64_t seed) {
    RoleBuckets buckets;
    buckets.loop = bucketOf(ChannelRole::loop, available);
    return BankGenerator().makeRecipes(buckets, GenerationMode::loops, std::nullopt, banks,
                                       BankNameScheme("kit"), seed);
}

RC_GTEST_PROP(BankGenerator, drawsEverySampleBeforeRepeatingOne, (std::uint64_t seed)) {
    const auto available = *rc::gen::inRange<std::size_t>(8, 200);
    const auto banks = (available + 7) / 8;
    const auto names = handedOut(loopRecipes(available, static_cast<std::int64_t>(banks), seed));
    const auto firstRound = static_cast<std::ptrdiff_t>(available);
    const std::set<std::string> different(names.begin(), names.begin() + firstRound);
    RC_ASSERT(different.size() == available);
}

RC_GTEST_PROP(BankGenerator, avoidsDuplicatesWithinABankWhilePossible, (std::uint64_t seed)) {
    const auto available = *rc::gen::inRange<std::size_t>(8, 40);
    for (const auto& recipe : loopRecipes(available, 99, seed)) {
        const auto names = handedOut({recipe});
        RC_ASSERT(std::set<std::string>(names.begin(), names.end()).size() == 8U);
    }
}

RC_GTEST_PROP(BankGenerator, marksDrumBanksWithDuplicates, (std::uint64_t seed)) {
    RoleBuckets buckets;
    buckets.kick = bucketOf(ChannelRole::kick, *rc::gen::inRange<std::size_t>(1, 5));
    buckets.snare = bucketOf(ChannelRole::snare, *rc::gen::inRange<std::size_t>(0, 5));
    buckets.clap = bucketOf(ChannelRole::clap, *rc::gen::inRange<std::size_t>(0, 5));
    buckets.openHat = bucketOf(ChannelRole::openHat, *rc::gen::inRange<std::size_t>(0, 5));
    buckets.closedHat = bucketOf(ChannelRole::closedHat, *rc::gen::inRange<std::size_t>(0, 5));
    buckets.perc = bucketOf(ChannelRole::perc, *rc::gen::inRange<std::size_t>(3, 12));
    const auto recipes = BankGenerator().makeRecipes(buckets, GenerationMode::drums, std::nullopt,
                                                     40, BankNameScheme("kit"), seed);
    const auto fallbackSlots = std::ranges::count_if(
        generationTemplate(GenerationMode::drums).slots, [&](const TemplateSlot& slot) {
            return slot.role == ChannelRole::perc || buckets.samples(slot.role).empty();
        });
    const bool percsSuffice = static_cast<std::size_t>(fallbackSlots) <= buckets.perc.size();
    for (const auto& recipe : recipes) {
        const auto names = handedOut({recipe});
        const bool hasDoubles = std::set<std::string>(names.begin(), names.end()).size() < 8;
        RC_ASSERT(!hasDoubles || recipe.reusedSamples);
        RC_ASSERT(hasDoubles == !percsSuffice);
    }
}

} // namespace
} // namespace torvo::test
