#pragma once

#include "Models.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace torvo::bankrun {

/// Exactly one of `source`, `scan`, `import` and `stamp` is set.
struct Arguments {
    std::optional<std::filesystem::path> source;
    std::optional<std::filesystem::path> scan;
    std::optional<std::filesystem::path> import;
    std::optional<std::filesystem::path> stamp;
    std::optional<std::filesystem::path> out;
    std::optional<std::filesystem::path> json;
    std::optional<std::uint64_t> seed; ///< drawn when absent
    GenerationMode mode = GenerationMode::drums;
    std::int64_t banks = 99;
    TorvoMetadataOptions metadataOptions;
};

/// Throws `bench::UsageError`.
Arguments parseArguments(int argc, char** argv);

extern const char* const usage;

} // namespace torvo::bankrun
