#pragma once

#include <cstdint>
#include <string_view>

/// Constants of the hardware sampler.
namespace torvo::device {

/// The folder on the card that the device reads.
inline constexpr std::string_view folderName = "QZT508";
/// Channels are numbered from 1.
constexpr std::int64_t channelCount = 8;
constexpr std::uint32_t sampleRate = 44100; ///< Hz
/// The range of playback bit depths.
constexpr std::int64_t minBits = 1;
constexpr std::int64_t maxBits = 16;

constexpr bool hasChannel(std::int64_t number) {
    return number >= 1 && number <= channelCount;
}

} // namespace torvo::device
