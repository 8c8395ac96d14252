#pragma once

#include "AiffFixture.h"
#include "AudioSupport.h"
#include "TemporaryFolder.h"
#include "WavFixture.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torvo::test {

/// Runs a shell command in a folder. A missing tool or a failure fails the test.
void runTool(const std::filesystem::path& folder, const std::string& command);

/// An output file of ffmpeg and the options before it.
struct Encoding {
    std::string arguments;
    std::string name;
};

/// Encodes `source` to several files (all in the folder) with one call of ffmpeg: starting it takes
/// longer than encoding a short file.
void encode(const TemporaryFolder& folder, const std::string& source,
            const std::vector<Encoding>& encodings);
/// Makes `name` from `source` (both in the folder) with ffmpeg.
void encode(const TemporaryFolder& folder, const std::string& source, const std::string& arguments,
            const std::string& name);

/// The encodings of a table whose rows begin with them.
template <typename Rows>
std::vector<Encoding> encodingsOf(const Rows& rows) {
    std::vector<Encoding> encodings;
    for (const auto& row : rows)
        encodings.push_back({row.arguments, row.name});
    return encodings;
}

/// The frames of a converted file, whose header must be the canonical one.
std::vector<std::int16_t> deviceFrames(const std::filesystem::path& path);

SampleCandidate sampleToConvert(const std::filesystem::path& path);
SampleCandidate sampleToCopy(const std::filesystem::path& path);

/// Converts a file to one beside it and returns the frames.
std::vector<std::int16_t> convertedFrames(const std::filesystem::path& path);

/// The frames of a file at its own rate, mixed to mono, full scale at 1.
std::vector<double> decodedFrames(const std::filesystem::path& path);

/// 16-bit frames with full scale at 1.
std::vector<double> normalized(std::span<const std::int16_t> frames);

/// The delay of `decoded` relative to the first part of `original` in frames, found by correlation;
/// negative when it is early.
std::ptrdiff_t bestLag(std::span<const double> original, std::span<const double> decoded);

/// The power of `original` relative to that of the difference. Frames missing from `decoded` count
/// as silence.
double decibelsBetween(std::span<const double> original, std::span<const double> decoded);

/// The error message of a preparation, or "none".
std::string failureOf(const AudioFilePreparing& preparer, const SampleCandidate& sample,
                      const std::filesystem::path& destination);

/// A "fmt " chunk as stored in the file.
std::vector<std::byte> formatChunk(std::uint16_t tag, std::uint16_t channels,
                                   std::uint32_t sampleRate, std::uint16_t blockAlign,
                                   std::uint16_t bits, std::span<const std::byte> extension = {});
/// The extension of a WAVE_FORMAT_EXTENSIBLE chunk for a plain format tag.
std::vector<std::byte> extensibleTail(std::uint16_t validBits, std::uint16_t tag);

/// The same file with every 16-bit sample and every number in big-endian order, as "RIFX".
std::vector<std::byte> bigEndianWav(std::uint32_t sampleRate, std::span<const std::int16_t> frames);
/// A 16-bit mono file with its size in a "ds64" chunk; `id` is "RF64" or "BW64".
std::vector<std::byte> longWav(std::string_view id, std::uint32_t sampleRate,
                               std::span<const std::int16_t> frames);
std::vector<std::byte> wavOf(std::uint32_t sampleRate, std::span<const std::int16_t> frames);

/// A loud signal without repetition, so that any shift is detected.
std::vector<std::int16_t> testSignal(std::size_t frameCount);

} // namespace torvo::test
