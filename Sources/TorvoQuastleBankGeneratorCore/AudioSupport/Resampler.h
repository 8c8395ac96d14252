#pragma once

#include "AudioSupport/AudioReader.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace torvo {

/// A reader's frames at the device's sample rate, without delay: frame 0 stays frame 0, and
/// frames × 44100 / rate of them come, rounded half up. At the device's rate already they pass
/// untouched. The result does not depend on how many are asked for at a time.
class Resampler {
public:
    /// `source` outlives the resampler. Throws `AudioError` when there is no filter for its rate.
    explicit Resampler(AudioReader& source);
    ~Resampler();
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;

    /// Fills `frames`; fewer than asked for come back only at the end. Throws what the source
    /// throws.
    std::size_t read(std::span<double> frames);
    /// How many frames will come, when the source tells.
    std::optional<std::uint64_t> expectedFrameCount() const;

private:
    struct Filter;

    /// Frames of silence, then the source's, then silence again.
    std::span<const double> nextInput();

    AudioReader& source_;
    std::uint64_t inputRate_; ///< Hz
    std::unique_ptr<Filter> filter_;
    std::vector<double> input_;
    std::span<const double> pendingInput_;
    std::uint64_t leadInLeft_ = 0; ///< frames of silence still to be fed
    std::uint64_t dropLeft_ = 0;   ///< output frames of that silence
    std::uint64_t sourceFrames_ = 0;
    std::uint64_t outputFrames_ = 0;
    bool sourceEnded_ = false;
};

} // namespace torvo
