#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace torvo::test {

/// A 16-bit AIFF file (Apple, Audio Interchange File Format 1.3) of interleaved samples.
std::vector<std::byte> aiffFile(std::uint32_t sampleRate, std::span<const std::int16_t> samples,
                                std::uint16_t channels = 1);

} // namespace torvo::test
