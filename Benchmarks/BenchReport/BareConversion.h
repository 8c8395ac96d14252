#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace torvo::bench {

/// A file as 44100 Hz, 16-bit, mono, by the shortest way through the libraries. It takes integer
/// PCM only, of the sizes that `Inputs` makes.
std::vector<std::int16_t> bareConversion(const std::filesystem::path& path);

} // namespace torvo::bench
