#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace torvo {

/// One frame as the mean of its channels. `sampleAt(channel)` gives a sample, full scale at 1.
/// The halves of two equal integer channels add up to exactly that channel.
template <typename SampleAt>
double mixedToMono(std::size_t channelCount, SampleAt sampleAt) {
    if (channelCount == 1)
        return sampleAt(0);
    double sum = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        sum += sampleAt(channel);
    return sum / static_cast<double>(channelCount);
}

/// Float files may hold anything. A value that is no number would silence everything behind it in
/// the resampler, and so would one whose products overflow.
inline double tamed(double sample) {
    constexpr double beyondEverySignal = 1e9;
    return std::isfinite(sample) ? std::clamp(sample, -beyondEverySignal, beyondEverySignal) : 0;
}

} // namespace torvo
