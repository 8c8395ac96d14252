#include "FrameMix.h"

#include "AudioSupport/AudioError.h"
#include "AudioSupport/MonoMix.h"
#include "FFmpegHandles.h"

#include <cstdint>
#include <type_traits>

namespace torvo {

namespace {

template <typename Sample>
double normalized(Sample sample) {
    if constexpr (std::is_floating_point_v<Sample>)
        return clampedFinite(sample);
    else if constexpr (std::is_same_v<Sample, std::uint8_t>)
        return (sample - 128) / 128.0;
    else if constexpr (std::is_same_v<Sample, std::int16_t>)
        return sample / 32768.0;
    else
        return sample / 2147483648.0;
}

template <typename Sample>
void mix(const AVFrame& frame, std::size_t first, std::span<double> mono) {
    const auto channelCount = static_cast<std::size_t>(frame.ch_layout.nb_channels);
    const bool isPlanar = av_sample_fmt_is_planar(static_cast<AVSampleFormat>(frame.format)) != 0;
    const auto plane = [&](std::size_t index) {
        return reinterpret_cast<const Sample*>(frame.extended_data[index]);
    };
    for (std::size_t i = 0; i < mono.size(); ++i) {
        const std::size_t position = first + i;
        mono[i] = mixedToMono(channelCount, [&](std::size_t channel) {
            return normalized(isPlanar ? plane(channel)[position]
                                       : plane(0)[position * channelCount + channel]);
        });
    }
}

} // namespace

void mixFrame(const AVFrame& frame, std::size_t first, std::span<double> mono) {
    switch (av_get_packed_sample_fmt(static_cast<AVSampleFormat>(frame.format))) {
    case AV_SAMPLE_FMT_U8:
        return mix<std::uint8_t>(frame, first, mono);
    case AV_SAMPLE_FMT_S16:
        return mix<std::int16_t>(frame, first, mono);
    case AV_SAMPLE_FMT_S32:
        return mix<std::int32_t>(frame, first, mono);
    case AV_SAMPLE_FMT_FLT:
        return mix<float>(frame, first, mono);
    case AV_SAMPLE_FMT_DBL:
        return mix<double>(frame, first, mono);
    default:
        throw AudioError::invalidData();
    }
}

} // namespace torvo
