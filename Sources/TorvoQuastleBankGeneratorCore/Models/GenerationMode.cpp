#include "Models/GenerationMode.h"

#include "Models/Device.h"

#include <algorithm>

namespace torvo {

namespace {

/// A case of an enumeration with its names.
template <typename Case>
struct Names {
    Case value;
    std::string_view rawValue;
    std::string_view displayName;
};

constexpr std::array<Names<ChannelRole>, allChannelRoles.size()> channelRoles{{
    {ChannelRole::kick, "kick", "Kick"},
    {ChannelRole::closedHat, "closedHat", "Closed Hat"},
    {ChannelRole::openHat, "openHat", "Open Hat"},
    {ChannelRole::snare, "snare", "Snare"},
    {ChannelRole::clap, "clap", "Clap"},
    {ChannelRole::perc, "perc", "Perc"},
    {ChannelRole::loop, "loop", "Loop"},
    {ChannelRole::stab, "stab", "Stab"},
}};

constexpr std::array<Names<GenerationMode>, allGenerationModes.size()> generationModes{{
    {GenerationMode::drums, "drums", "Drums"},
    {GenerationMode::loops, "loops", "Loops"},
    {GenerationMode::stabs, "stabs", "Stabs"},
}};

static_assert(std::ranges::equal(channelRoles, allChannelRoles, {}, &Names<ChannelRole>::value));
static_assert(std::ranges::equal(generationModes, allGenerationModes, {},
                                 &Names<GenerationMode>::value));

template <typename Case, std::size_t count>
Names<Case> namesOf(const std::array<Names<Case>, count>& table, Case value) {
    const auto found = std::ranges::find(table, value, &Names<Case>::value);
    return found == table.end() ? Names<Case>{value, {}, {}} : *found;
}

template <typename Case, std::size_t count>
std::optional<Case> withRawValue(const std::array<Names<Case>, count>& table,
                                 std::string_view wanted) {
    const auto found = std::ranges::find(table, wanted, &Names<Case>::rawValue);
    return found == table.end() ? std::nullopt : std::optional(found->value);
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
    return namesOf(channelRoles, role).rawValue;
}

std::string_view displayName(ChannelRole role) {
    return namesOf(channelRoles, role).displayName;
}

std::optional<ChannelRole> channelRole(std::string_view rawValue) {
    return withRawValue(channelRoles, rawValue);
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
    return namesOf(generationModes, mode).rawValue;
}

std::string_view displayName(GenerationMode mode) {
    return namesOf(generationModes, mode).displayName;
}

std::optional<GenerationMode> generationMode(std::string_view rawValue) {
    return withRawValue(generationModes, rawValue);
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
