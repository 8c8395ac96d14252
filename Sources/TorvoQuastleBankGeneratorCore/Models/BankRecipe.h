#pragma once

#include "Models/SampleRecords.h"

#include <cstdint>
#include <map>
#include <string>

namespace torvo {

/// One generated bank: the sample of each channel.
struct BankRecipe {
    std::int64_t bankIndex = 1; ///< counts from 1
    std::string shortName;
    std::map<std::int64_t, SampleCandidate> channels;
    std::uint64_t seed = 0;     ///< as passed to the generator, 0 included
    bool reusedSamples = false; ///< a pool was reshuffled in this bank, or a sample was used twice

    friend bool operator==(const BankRecipe&, const BankRecipe&) = default;
};

} // namespace torvo
