#include "Models/GenerationMode.h"

#include "Models/Device.h"

#include <algorithm>

namespace torvo {

namespace {

template <typename Case, std::size_t count>
std::optional<Case> withRawValue(const std::array<Case, count>& all, std::string_view wanted) {
    const auto found =
        std::ranges::find_if(all, [&](Case value) { return rawValue(value) == wanted; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

/// A template with one role for all eight channels, labelled with the role name and the channel
/// number.
GenerationTemplate uniformTemplate(std::string name, ChannelRole role) {
    GenerationTemplate uniform{std::move(name), {}};
    for (std::int64_t channel = 1; channel <= device::channelCount; ++channel) {
        uniform.slots.push_back(
            {channel, role, std::string(displayName(role)) + " " + std::to_string(channel)});
    }
    return uniform;
}

} // namespace

std::string_view rawValue(ChannelRole role) {
    switch (role) {
    case ChannelRole::kick:
        return "kick";
    case ChannelRole::closedHat:
        return "closedHat";
    case ChannelRole::openHat:
        return "openHat";
    case ChannelRole::snare:
        return "snare";
    case ChannelRole::clap:
        return "clap";
    case ChannelRole::perc:
        return "perc";
    case ChannelRole::loop:
        return "loop";
    case ChannelRole::stab:
        return "stab";
    }
    return {};
}

std::string_view displayName(ChannelRole role) {
    switch (role) {
    case ChannelRole::kick:
        return "Kick";
    case ChannelRole::closedHat:
        return "Closed Hat";
    case ChannelRole::openHat:
        return "Open Hat";
    case ChannelRole::snare:
        return "Snare";
    case ChannelRole::clap:
        return "Clap";
    case ChannelRole::perc:
        return "Perc";
    case ChannelRole::loop:
        return "Loop";
    case ChannelRole::stab:
        return "Stab";
    }
    return {};
}

std::optional<ChannelRole> channelRole(std::string_view rawValue) {
    return withRawValue(allChannelRoles, rawValue);
}

const GenerationTemplate& GenerationTemplate::torvoV1() {
    // Intended: the clap is on channel 2 and the snare on channel 5.
    static const GenerationTemplate drums{"Torvo V1",
                                          {{1, ChannelRole::kick, "Kick"},
                                           {2, ChannelRole::clap, "Clap"},
                                           {3, ChannelRole::closedHat, "Closed Hat"},
                                           {4, ChannelRole::openHat, "Open Hat"},
                                           {5, ChannelRole::snare, "Snare"},
                                           {6, ChannelRole::perc, "Perc 1"},
                                           {7, ChannelRole::perc, "Perc 2"},
                                           {8, ChannelRole::perc, "Perc 3"}}};
    return drums;
}

const GenerationTemplate& GenerationTemplate::torvoLoopsV1() {
    static const auto loops = uniformTemplate("Torvo Loops V1", ChannelRole::loop);
    return loops;
}

const GenerationTemplate& GenerationTemplate::torvoStabsV1() {
    static const auto stabs = uniformTemplate("Torvo Stabs V1", ChannelRole::stab);
    return stabs;
}

std::string_view rawValue(GenerationMode mode) {
    switch (mode) {
    case GenerationMode::drums:
        return "drums";
    case GenerationMode::loops:
        return "loops";
    case GenerationMode::stabs:
        return "stabs";
    }
    return {};
}

std::string_view displayName(GenerationMode mode) {
    switch (mode) {
    case GenerationMode::drums:
        return "Drums";
    case GenerationMode::loops:
        return "Loops";
    case GenerationMode::stabs:
        return "Stabs";
    }
    return {};
}

std::optional<GenerationMode> generationMode(std::string_view rawValue) {
    return withRawValue(allGenerationModes, rawValue);
}

const GenerationTemplate& generationTemplate(GenerationMode mode) {
    switch (mode) {
    case GenerationMode::loops:
        return GenerationTemplate::torvoLoopsV1();
    case GenerationMode::stabs:
        return GenerationTemplate::torvoStabsV1();
    case GenerationMode::drums:
        break;
    }
    return GenerationTemplate::torvoV1();
}

} // namespace torvo
