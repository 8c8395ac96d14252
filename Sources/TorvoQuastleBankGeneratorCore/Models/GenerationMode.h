#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvo {

/// What a channel of a bank plays.
enum class ChannelRole { kick, closedHat, openHat, snare, clap, perc, loop, stab };

inline constexpr std::array<ChannelRole, 8> allChannelRoles{
    ChannelRole::kick, ChannelRole::closedHat, ChannelRole::openHat, ChannelRole::snare,
    ChannelRole::clap, ChannelRole::perc,      ChannelRole::loop,    ChannelRole::stab};

/// The name in documents, for example "closedHat".
std::string_view rawValue(ChannelRole role);
/// The name in the user interface, for example "Closed Hat".
std::string_view displayName(ChannelRole role);
/// The role with this raw value. Empty when there is none.
std::optional<ChannelRole> channelRole(std::string_view rawValue);

/// One device channel of a template.
struct TemplateSlot {
    std::int64_t channel = 1; ///< 1 to 8
    ChannelRole role = ChannelRole::kick;
    std::string label;

    friend bool operator==(const TemplateSlot&, const TemplateSlot&) = default;
};

/// A channel layout: the role of each channel of the device.
struct GenerationTemplate {
    std::string name;
    std::vector<TemplateSlot> slots; ///< in channel order

    friend bool operator==(const GenerationTemplate&, const GenerationTemplate&) = default;

    static const GenerationTemplate& torvoV1();
    static const GenerationTemplate& torvoLoopsV1();
    static const GenerationTemplate& torvoStabsV1();
};

/// The three ways to fill a bank.
enum class GenerationMode { drums, loops, stabs };

inline constexpr std::array<GenerationMode, 3> allGenerationModes{
    GenerationMode::drums, GenerationMode::loops, GenerationMode::stabs};

std::string_view rawValue(GenerationMode mode);
std::string_view displayName(GenerationMode mode);
/// The mode with this raw value. Empty when there is none.
std::optional<GenerationMode> generationMode(std::string_view rawValue);
/// The mode's built-in template.
const GenerationTemplate& generationTemplate(GenerationMode mode);

} // namespace torvo
