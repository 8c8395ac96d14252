#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace torvo {

/// The playback sample rates of the device, in kHz, slowest first.
enum class TorvoPlaybackRate : std::int64_t {
    rate4 = 4,
    rate6 = 6,
    rate7 = 7,
    rate9 = 9,
    rate11 = 11,
    rate14 = 14,
    rate22 = 22,
    rate44 = 44,
};

inline constexpr std::array<TorvoPlaybackRate, 8> allTorvoPlaybackRates{
    TorvoPlaybackRate::rate4,  TorvoPlaybackRate::rate6,  TorvoPlaybackRate::rate7,
    TorvoPlaybackRate::rate9,  TorvoPlaybackRate::rate11, TorvoPlaybackRate::rate14,
    TorvoPlaybackRate::rate22, TorvoPlaybackRate::rate44};

constexpr std::int64_t rawValue(TorvoPlaybackRate rate) {
    return static_cast<std::int64_t>(rate);
}
/// The number alone: "44".
std::string displayName(TorvoPlaybackRate rate);
/// The byte in the "busy" chunk. The device counts from the fastest rate: 0 for `rate44`, 7 for
/// `rate4`.
std::uint8_t storedByte(TorvoPlaybackRate rate);
std::optional<TorvoPlaybackRate> torvoPlaybackRate(std::int64_t rawValue);

/// The filter modes of a channel; the raw value is the code in the file.
enum class TorvoFilterType : std::int64_t { off, lowPass, bandPass, notch, highPass };

inline constexpr std::array<TorvoFilterType, 5> allTorvoFilterTypes{
    TorvoFilterType::off, TorvoFilterType::lowPass, TorvoFilterType::bandPass,
    TorvoFilterType::notch, TorvoFilterType::highPass};

constexpr std::int64_t rawValue(TorvoFilterType filter) {
    return static_cast<std::int64_t>(filter);
}
/// "Off", "LP", "BP", "NT" or "HP".
std::string displayName(TorvoFilterType filter);
std::optional<TorvoFilterType> torvoFilterType(std::int64_t rawValue);

/// The playback settings that are written into the files of a run.
struct TorvoMetadataOptions {
    std::int64_t bits = 16;
    TorvoPlaybackRate rate = TorvoPlaybackRate::rate44;
    TorvoFilterType filterType = TorvoFilterType::off;
    bool cvAssignmentsEnabled = false;
    std::set<std::int64_t> cvAssignedChannels;

    TorvoMetadataOptions() = default;
    /// Clamps the bit depth to 1 … 16 and ignores channels outside 1 … 8.
    TorvoMetadataOptions(std::int64_t bitDepth, TorvoPlaybackRate playbackRate,
                         TorvoFilterType filter, bool enablesCV,
                         const std::set<std::int64_t>& cvChannels);

    /// Whether files of this channel receive the CV routing. False without a channel.
    bool appliesCV(std::optional<std::int64_t> channel) const;

    friend bool operator==(const TorvoMetadataOptions&, const TorvoMetadataOptions&) = default;
};

} // namespace torvo
