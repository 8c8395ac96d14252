#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace torvo::bench {

/// Converts a file to 44100 Hz, 16-bit, mono, with direct calls of FFmpeg and soxr. Only for
/// integer PCM of the sizes that `Inputs` makes.
std::vector<std::int16_t> bareConversion(const std::filesystem::path& path);

} // namespace torvo::bench
