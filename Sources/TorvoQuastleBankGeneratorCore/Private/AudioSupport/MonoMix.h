#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace torvo {

/// Mixes one frame to the mean of its channels. `sampleAt(channel)` returns a sample with full
/// scale at ±1. Two equal integer channels give exactly the value of one channel.
template <typename SampleAt>
double mixedToMono(std::size_t channelCount, SampleAt sampleAt) {
    if (channelCount == 1)
        return sampleAt(0);
    double sum = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        sum += sampleAt(channel);
    return sum / static_cast<double>(channelCount);
}

/// Replaces NaN and infinity by 0 and clamps huge values. Float files may contain either, and a
/// single NaN or overflow in the resampler would corrupt all following output.
inline double clampedFinite(double sample) {
    constexpr double beyondEverySignal = 1e9;
    return std::isfinite(sample) ? std::clamp(sample, -beyondEverySignal, beyondEverySignal) : 0;
}

} // namespace torvo
