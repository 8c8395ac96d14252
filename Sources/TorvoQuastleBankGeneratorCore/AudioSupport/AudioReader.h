#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace torvo {

/// What is stored, before any decoding.
struct AudioStreamFormat {
    double sampleRate = 0; ///< Hz, from `minSampleRate` to `maxSampleRate`
    std::int64_t channels = 0;
    /// The container's bits for integer and float PCM, 8 for A-law and mu-law, 0 for the rest.
    std::int64_t bitDepth = 0;
    /// Integer PCM. Float is none, in whatever file it stands: the device plays integers only.
    bool isLinearPCM = false;
};

// Headers with a rate outside these limits are treated as damaged: at 1 Hz, a short file would be
// converted to hours of audio.
constexpr double minSampleRate = 100;
constexpr double maxSampleRate = 16'000'000;

/// One audio file being decoded from its first frame to its last, mixed to mono. Functions throw
/// `AudioError`, or the `FileError` of the bytes below.
class AudioReader {
public:
    virtual ~AudioReader() = default;

    virtual const AudioStreamFormat& format() const = 0;
    /// How many frames will come, when the file tells.
    virtual std::optional<std::uint64_t> expectedFrameCount() const = 0;
    /// Fills `frames` with the mean of all channels, full scale at 1; fewer than asked for come
    /// back only at the end. Every value is finite.
    virtual std::size_t read(std::span<double> frames) = 0;
};

} // namespace torvo
