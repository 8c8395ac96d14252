#pragma once

#include "Models/BankNameScheme.h"
#include "Models/BankRecipe.h"
#include "Models/GenerationMode.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace torvo {

/// Creates bank recipes from the samples of a scan. Deterministic: the same arguments give the same
/// recipes on every machine.
class BankGenerator {
public:
    /// Whether there are enough samples: drums need one kick and three percussion samples, loops
    /// and stabs need eight files.
    bool canGenerate(const RoleBuckets& buckets, GenerationMode mode) const;

    /// Returns the recipes of banks 1 to `targetBankCount`, which must be at least 1. Uses the
    /// mode's built-in template if none is given. Throws `GenerationError`.
    std::vector<BankRecipe> makeRecipes(const RoleBuckets& buckets, GenerationMode mode,
                                        const std::optional<GenerationTemplate>& generationTemplate,
                                        std::int64_t targetBankCount, const BankNameScheme& naming,
                                        std::uint64_t seed) const;
};

} // namespace torvo
