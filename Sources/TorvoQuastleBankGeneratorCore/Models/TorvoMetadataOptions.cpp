#include "Models/TorvoMetadataOptions.h"

#include "Models/Device.h"

#include <algorithm>

namespace torvo {

std::string displayName(TorvoPlaybackRate rate) {
    return std::to_string(rawValue(rate));
}

std::uint8_t storedByte(TorvoPlaybackRate rate) {
    const auto position = std::ranges::find(allTorvoPlaybackRates, rate);
    return static_cast<std::uint8_t>(allTorvoPlaybackRates.end() - position - 1);
}

std::optional<TorvoPlaybackRate> torvoPlaybackRate(std::int64_t rawValue) {
    const auto found = std::ranges::find_if(
        allTorvoPlaybackRates, [&](auto rate) { return torvo::rawValue(rate) == rawValue; });
    return found == allTorvoPlaybackRates.end() ? std::nullopt : std::optional(*found);
}

std::string displayName(TorvoFilterType filter) {
    switch (filter) {
    case TorvoFilterType::off:
        return "Off";
    case TorvoFilterType::lowPass:
        return "LP";
    case TorvoFilterType::bandPass:
        return "BP";
    case TorvoFilterType::notch:
        return "NT";
    case TorvoFilterType::highPass:
        return "HP";
    }
    return {};
}

std::optional<TorvoFilterType> torvoFilterType(std::int64_t rawValue) {
    const auto found = std::ranges::find_if(
        allTorvoFilterTypes, [&](auto filter) { return torvo::rawValue(filter) == rawValue; });
    return found == allTorvoFilterTypes.end() ? std::nullopt : std::optional(*found);
}

TorvoMetadataOptions::TorvoMetadataOptions(std::int64_t bitDepth, TorvoPlaybackRate playbackRate,
                                           TorvoFilterType filter, bool enablesCV,
                                           const std::set<std::int64_t>& cvChannels)
    : bits(std::clamp(bitDepth, device::minBits, device::maxBits)),
      rate(playbackRate),
      filterType(filter),
      cvAssignmentsEnabled(enablesCV) {
    for (const auto channel : cvChannels) {
        if (device::hasChannel(channel))
            cvAssignedChannels.insert(channel);
    }
}

bool TorvoMetadataOptions::appliesCV(std::optional<std::int64_t> channel) const {
    return cvAssignmentsEnabled && channel && cvAssignedChannels.contains(*channel);
}

} // namespace torvo
