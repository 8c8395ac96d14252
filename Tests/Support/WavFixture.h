#pragma once

#include "Bytes.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace torvo::test {

/// The encodings of a WAV file's "fmt " chunk.
enum class WavEncoding { integer, floatingPoint };

struct WavFormat {
    std::uint32_t sampleRate = 44100; ///< Hz
    std::uint16_t channels = 1;
    std::uint16_t bits = 16; ///< per sample, and of its container
    WavEncoding encoding = WavEncoding::integer;
};

/// A plain RIFF/WAVE file: "fmt ", "data". `frames` holds interleaved samples from -1 to 1, full
/// scale at 1; integers are rounded to nearest and clamped.
std::vector<std::byte> wavFile(const WavFormat& format, std::span<const double> samples);

/// The same format with `frameCount` frames of a quiet ramp, so that no byte pattern repeats.
std::vector<std::byte> wavFile(const WavFormat& format, std::size_t frameCount);

/// "RIFF", the size, "WAVE" and the chunks as they are given.
std::vector<std::byte> riffFile(const std::vector<std::vector<std::byte>>& chunks);

/// Id, size, payload and the pad byte of an odd one.
std::vector<std::byte> riffChunk(std::string_view id, std::span<const std::byte> payload);

/// A file with the chunk "data" alone, of four bytes. It can be stamped.
std::vector<std::byte> smallWav();

} // namespace torvo::test
