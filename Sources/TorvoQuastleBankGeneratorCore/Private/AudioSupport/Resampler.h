#pragma once

#include "AudioSupport/AudioReader.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace torvo {

/// The number of frames after resampling `frames` frames from `rate` Hz (at least 1) to 44100 Hz:
/// frames × 44100 / rate, rounded half up and saturated.
std::uint64_t resampledFrameCount(std::uint64_t frames, std::uint64_t rate);

/// Resamples a reader's frames to 44100 Hz with soxr, without delay: input frame 0 is output frame
/// 0, and the output has `resampledFrameCount` frames. Input at 44100 Hz passes through unchanged.
/// The output does not depend on the sizes of the reads.
class Resampler {
public:
    /// `source` must outlive the resampler. Throws `AudioError` when soxr cannot resample its rate.
    explicit Resampler(AudioReader& source);
    ~Resampler();
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;

    /// Reads the next frames. Returns the number of frames read, which is smaller than requested
    /// only at the end. Throws the source's errors, and `AudioError` when soxr fails.
    std::size_t read(std::span<double> frames);
    /// The number of output frames. Empty when the source does not know its length.
    std::optional<std::uint64_t> expectedFrameCount() const;

private:
    struct Filter;

    /// The next input block: the lead-in silence, then the source's frames, then silence.
    std::span<const double> nextInput();

    AudioReader& source_;
    std::uint64_t inputRate_; ///< Hz
    std::unique_ptr<Filter> filter_;
    std::vector<double> input_;
    std::span<const double> pendingInput_;
    std::uint64_t leadInLeft_ = 0; ///< frames of lead-in silence not yet sent to soxr
    std::uint64_t dropLeft_ = 0;   ///< output frames of the lead-in not yet discarded
    std::uint64_t sourceFrames_ = 0;
    std::uint64_t outputFrames_ = 0;
    bool hasSourceEnded_ = false;
};

} // namespace torvo
