#include "BankGenerator.h"

#include "Models/GenerationError.h"
#include "Platform/Precondition.h"
#include "Platform/UnicodeText.h"
#include "SeededGenerator.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace torvo {

namespace {

constexpr std::int64_t requiredPercussion = 3;
constexpr std::int64_t requiredUniformFiles = 8;

/// The standardised paths of the samples already used in a bank.
using UsedPaths = std::unordered_set<std::string>;

std::string standardizedPath(const SampleCandidate& sample) {
    return sample.sourceURL.standardized().nativePath();
}

struct CyclingPick {
    const SampleCandidate* item;
    bool reused; ///< the pool was reshuffled during this pick, or every sample was already used
};

/// Returns all samples of a bucket in random order before repeating any of them.
class CyclingPool {
public:
    /// `items` must outlive the pool.
    CyclingPool(const std::vector<SampleCandidate>& items, SeededGenerator& random)
        : items_(items) {
        reshuffle(random);
    }

    bool isEmpty() const { return items_.empty(); }

    CyclingPick next(const UsedPaths& usedPaths, SeededGenerator& random) {
        if (items_.empty())
            throw GenerationError::noRecipesGenerated();
        bool wrapped = false;
        const SampleCandidate* fallback = nullptr;
        for (std::size_t attempt = 0; attempt < 3 * items_.size(); ++attempt) {
            if (cursor_ >= order_.size()) {
                reshuffle(random);
                wrapped = true;
            }
            const auto* candidate = order_[cursor_++];
            if (fallback == nullptr)
                fallback = candidate;
            if (!usedPaths.contains(standardizedPath(*candidate)))
                return {candidate, wrapped};
        }
        return {fallback, true};
    }

private:
    /// Always shuffles the bucket order. Shuffling the previous permutation would give other banks
    /// for the same seed.
    void reshuffle(SeededGenerator& random) {
        order_.clear();
        order_.reserve(items_.size());
        for (const auto& item : items_)
            order_.push_back(&item);
        random.shuffle(order_);
        cursor_ = 0;
    }

    const std::vector<SampleCandidate>& items_;
    std::vector<const SampleCandidate*> order_;
    std::size_t cursor_ = 0;
};

/// Returns the pool for a role. Throws `GenerationError` for a role that the mode does not support.
using PoolForRole = std::function<CyclingPool&(ChannelRole)>;

std::vector<BankRecipe> fillBanks(const GenerationTemplate& generationTemplate,
                                  std::int64_t targetBankCount, const BankNameScheme& naming,
                                  std::uint64_t seed, SeededGenerator& random,
                                  const PoolForRole& poolForRole) {
    auto slots = generationTemplate.slots;
    std::ranges::stable_sort(slots, {}, &TemplateSlot::channel);

    std::vector<BankRecipe> recipes;
    for (std::int64_t bankIndex = 1; bankIndex <= targetBankCount; ++bankIndex) {
        BankRecipe recipe{bankIndex, naming.bankName(bankIndex), {}, seed, false};
        UsedPaths used;
        for (const auto& slot : slots) {
            const auto pick = poolForRole(slot.role).next(used, random);
            recipe.channels.insert_or_assign(slot.channel, *pick.item);
            recipe.reusedSamples = recipe.reusedSamples || pick.reused;
            used.insert(standardizedPath(*pick.item));
        }
        recipes.push_back(std::move(recipe));
    }
    if (recipes.empty())
        throw GenerationError::noRecipesGenerated();
    return recipes;
}

/// The minimum number of samples in a bucket, and the error when there are fewer.
struct Requirement {
    std::int64_t found;
    std::int64_t needed;
    GenerationError (*error)(std::int64_t found);
};

/// The first requirement that the samples do not meet. Empty when they meet all.
std::optional<Requirement> unmetRequirement(const RoleBuckets& buckets, GenerationMode mode) {
    const auto requirements = [&]() -> std::vector<Requirement> {
        switch (mode) {
        case GenerationMode::loops:
            return {{std::ssize(buckets.loop), requiredUniformFiles,
                     &GenerationError::insufficientLoops}};
        case GenerationMode::stabs:
            return {{std::ssize(buckets.stab), requiredUniformFiles,
                     &GenerationError::insufficientStabs}};
        case GenerationMode::drums:
            break;
        }
        const auto missingKick = [](std::int64_t) {
            return GenerationError::requiredRoleMissing(ChannelRole::kick);
        };
        return {{std::ssize(buckets.kick), 1, missingKick},
                {std::ssize(buckets.perc), requiredPercussion,
                 &GenerationError::insufficientPercussion}};
    }();
    const auto unmet = std::ranges::find_if(requirements, [](const Requirement& requirement) {
        return requirement.found < requirement.needed;
    });
    return unmet == requirements.end() ? std::nullopt : std::optional(*unmet);
}

std::vector<BankRecipe> makeDrumRecipes(const RoleBuckets& buckets,
                                        const GenerationTemplate& generationTemplate,
                                        std::int64_t targetBankCount, const BankNameScheme& naming,
                                        std::uint64_t seed) {
    SeededGenerator random(seed);
    // Keep this order: each pool draws random numbers, so another order gives other banks for the
    // same seed.
    CyclingPool kick(buckets.kick, random);
    CyclingPool clap(buckets.clap, random);
    CyclingPool closedHat(buckets.closedHat, random);
    CyclingPool openHat(buckets.openHat, random);
    CyclingPool snare(buckets.snare, random);
    CyclingPool perc(buckets.perc, random);

    const auto orPerc = [&](CyclingPool& pool) -> CyclingPool& {
        return pool.isEmpty() ? perc : pool;
    };
    const auto poolForRole = [&](ChannelRole role) -> CyclingPool& {
        switch (role) {
        case ChannelRole::kick:
            return kick;
        case ChannelRole::clap:
            return orPerc(clap);
        case ChannelRole::closedHat:
            return orPerc(closedHat);
        case ChannelRole::openHat:
            return orPerc(openHat);
        case ChannelRole::snare:
            return orPerc(snare);
        case ChannelRole::perc:
            return perc;
        case ChannelRole::loop:
        case ChannelRole::stab:
            break;
        }
        throw GenerationError::exportFailed(std::string(displayName(role)) +
                                            " slots are not valid in Drums mode.");
    };
    return fillBanks(generationTemplate, targetBankCount, naming, seed, random, poolForRole);
}

/// Loops and stabs use one pool for all channels.
std::vector<BankRecipe> makeUniformRecipes(const std::vector<SampleCandidate>& bucket,
                                           ChannelRole onlyRole, GenerationMode mode,
                                           const GenerationTemplate& generationTemplate,
                                           std::int64_t targetBankCount,
                                           const BankNameScheme& naming, std::uint64_t seed) {
    SeededGenerator random(seed);
    CyclingPool pool(bucket, random);
    const auto poolForRole = [&](ChannelRole role) -> CyclingPool& {
        if (role != onlyRole) {
            throw GenerationError::exportFailed("Only " + text::lowercased(displayName(onlyRole)) +
                                                " slots are valid in " +
                                                std::string(displayName(mode)) + " mode.");
        }
        return pool;
    };
    return fillBanks(generationTemplate, targetBankCount, naming, seed, random, poolForRole);
}

} // namespace

bool BankGenerator::canGenerate(const RoleBuckets& buckets, GenerationMode mode) const {
    return !unmetRequirement(buckets, mode);
}

std::vector<BankRecipe>
BankGenerator::makeRecipes(const RoleBuckets& buckets, GenerationMode mode,
                           const std::optional<GenerationTemplate>& generationTemplate,
                           std::int64_t targetBankCount, const BankNameScheme& naming,
                           std::uint64_t seed) const {
    precondition(targetBankCount >= 1, "a run has at least one bank");
    if (const auto unmet = unmetRequirement(buckets, mode))
        throw unmet->error(unmet->found);
    const auto& chosen = generationTemplate ? *generationTemplate : torvo::generationTemplate(mode);
    switch (mode) {
    case GenerationMode::loops:
        return makeUniformRecipes(buckets.loop, ChannelRole::loop, mode, chosen, targetBankCount,
                                  naming, seed);
    case GenerationMode::stabs:
        return makeUniformRecipes(buckets.stab, ChannelRole::stab, mode, chosen, targetBankCount,
                                  naming, seed);
    case GenerationMode::drums:
        break;
    }
    return makeDrumRecipes(buckets, chosen, targetBankCount, naming, seed);
}

} // namespace torvo
