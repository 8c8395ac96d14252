#pragma once

#include "Models/SampleRecords.h"

#include <cstdint>
#include <map>
#include <string>

namespace torvo {

/// One generated bank: the sample of each channel.
struct BankRecipe {
    std::int64_t bankIndex = 1; ///< from 1 on
    std::string shortName;
    std::map<std::int64_t, SampleCandidate> channels;
    std::uint64_t seed = 0;     ///< as passed to the generator, 0 included
    bool reusedSamples = false; ///< a pool started over in this bank, or a pick was a fallback

    friend bool operator==(const BankRecipe&, const BankRecipe&) = default;
};

} // namespace torvo
