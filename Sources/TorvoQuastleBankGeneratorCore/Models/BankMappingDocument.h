#pragma once

#include "Models/BankNameScheme.h"
#include "Models/BankRecipe.h"
#include "Models/GenerationMode.h"

#include <chrono>
#include <cstdint>
#include <vector>

namespace torvo {

/// The result of a run: the sample of each channel of each bank.
struct BankMappingDocument {
    std::int64_t version = 2;
    FileURL sourceFolder;
    GenerationMode generationMode = GenerationMode::drums;
    BankNameScheme naming;
    GenerationTemplate generationTemplate; ///< "template" in the file
    std::vector<BankRecipe> recipes;       ///< in bank order
    std::chrono::sys_seconds exportedAt;   ///< UTC

    friend bool operator==(const BankMappingDocument&, const BankMappingDocument&) = default;
};

} // namespace torvo
