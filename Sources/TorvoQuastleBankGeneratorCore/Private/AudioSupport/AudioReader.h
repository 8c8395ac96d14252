#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace torvo {

/// The format as stored in the file, before decoding.
struct AudioStreamFormat {
    double sampleRate = 0; ///< Hz, from `minSampleRate` to `maxSampleRate`
    std::int64_t channels = 0;
    /// The container size in bits for integer and float PCM, 8 for A-law and mu-law, 0 for all
    /// other encodings.
    std::int64_t bitDepth = 0;
    /// True for integer PCM only. Float PCM does not count, because the device cannot play it.
    bool isLinearPCM = false;
};

// Headers with a rate outside these limits are treated as damaged: at 1 Hz, a short file would be
// converted to hours of audio.
constexpr double minSampleRate = 100;
constexpr double maxSampleRate = 16'000'000;

/// Decodes one audio file sequentially and mixes it to mono. Functions throw `AudioError`, or the
/// `FileError` of the underlying file.
class AudioReader {
public:
    virtual ~AudioReader() = default;

    virtual const AudioStreamFormat& format() const = 0;
    /// The number of frames in the file. Empty when the file does not declare it.
    virtual std::optional<std::uint64_t> expectedFrameCount() const = 0;
    /// Reads the next frames, each the mean of all channels with full scale at ±1. Returns the
    /// number of frames read, which is smaller than requested only at the end. All values are
    /// finite.
    virtual std::size_t read(std::span<double> frames) = 0;
};

} // namespace torvo
