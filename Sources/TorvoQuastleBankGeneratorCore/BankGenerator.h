#pragma once

#include "Models/BankNameScheme.h"
#include "Models/BankRecipe.h"
#include "Models/GenerationMode.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace torvo {

/// Turns the samples of a scan into bank recipes. Pure logic: the same arguments give the same
/// recipes on every machine.
class BankGenerator {
public:
    /// Whether there is enough to begin with: drums need a kick and three percs, loops and stabs
    /// eight files.
    bool canGenerate(const RoleBuckets& from, GenerationMode mode) const;

    /// The recipes of banks 1 … `targetBankCount` (at least 1). Without a template the mode's own
    /// is used. Throws `GenerationError`; nothing partial is returned.
    std::vector<BankRecipe> makeRecipes(const RoleBuckets& from, GenerationMode mode,
                                        const std::optional<GenerationTemplate>& generationTemplate,
                                        std::int64_t targetBankCount, const BankNameScheme& naming,
                                        std::uint64_t seed) const;
};

} // namespace torvo
