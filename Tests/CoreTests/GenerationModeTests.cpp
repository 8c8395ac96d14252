#include "Models/GenerationMode.h"

#include <gtest/gtest.h>

namespace torvo::test {
namespace {

struct RoleRow {
    ChannelRole role;
    const char* rawValue;
    const char* displayName;
};

constexpr RoleRow roleRows[] = {
    {ChannelRole::kick, "kick", "Kick"},
    {ChannelRole::closedHat, "closedHat", "Closed Hat"},
    {ChannelRole::openHat, "openHat", "Open Hat"},
    {ChannelRole::snare, "snare", "Snare"},
    {ChannelRole::clap, "clap", "Clap"},
    {ChannelRole::perc, "perc", "Perc"},
    {ChannelRole::loop, "loop", "Loop"},
    {ChannelRole::stab, "stab", "Stab"},
};

struct ModeRow {
    GenerationMode mode;
    const char* rawValue;
    const char* displayName;
    const char* templateName;
};

constexpr ModeRow modeRows[] = {
    {GenerationMode::drums, "drums", "Drums", "Torvo V1"},
    {GenerationMode::loops, "loops", "Loops", "Torvo Loops V1"},
    {GenerationMode::stabs, "stabs", "Stabs", "Torvo Stabs V1"},
};

TEST(ChannelRole, hasItsRawValueAndName) {
    ASSERT_EQ(std::size(roleRows), allChannelRoles.size());
    for (std::size_t i = 0; i < std::size(roleRows); ++i) {
        EXPECT_EQ(allChannelRoles[i], roleRows[i].role) << "declaration order";
        EXPECT_EQ(rawValue(roleRows[i].role), roleRows[i].rawValue);
        EXPECT_EQ(displayName(roleRows[i].role), roleRows[i].displayName);
        EXPECT_EQ(channelRole(roleRows[i].rawValue), roleRows[i].role);
    }
}

TEST(ChannelRole, isFoundByItsExactRawValueOnly) {
    for (const auto* name :
         {"Kick", "KICK", "closedhat", "openhat", "Closed Hat", "", " kick", "kick ", "percussion"})
        EXPECT_EQ(channelRole(name), std::nullopt) << name;
}

TEST(GenerationMode, hasItsRawValueNameAndTemplate) {
    ASSERT_EQ(std::size(modeRows), allGenerationModes.size());
    for (std::size_t i = 0; i < std::size(modeRows); ++i) {
        EXPECT_EQ(allGenerationModes[i], modeRows[i].mode) << "declaration order";
        EXPECT_EQ(rawValue(modeRows[i].mode), modeRows[i].rawValue);
        EXPECT_EQ(displayName(modeRows[i].mode), modeRows[i].displayName);
        EXPECT_EQ(generationMode(modeRows[i].rawValue), modeRows[i].mode);
        EXPECT_EQ(generationTemplate(modeRows[i].mode).name, modeRows[i].templateName);
    }
}

TEST(GenerationMode, isFoundByItsExactRawValueOnly) {
    for (const auto* name : {"Drums", "Loops", "Stabs", "DRUMS", "drum", "", "drums "})
        EXPECT_EQ(generationMode(name), std::nullopt) << name;
}

TEST(GenerationTemplate, assignsDrumChannels) {
    const std::vector<TemplateSlot> expected{{1, ChannelRole::kick, "Kick"},
                                             {2, ChannelRole::clap, "Clap"},
                                             {3, ChannelRole::closedHat, "Closed Hat"},
                                             {4, ChannelRole::openHat, "Open Hat"},
                                             {5, ChannelRole::snare, "Snare"},
                                             {6, ChannelRole::perc, "Perc 1"},
                                             {7, ChannelRole::perc, "Perc 2"},
                                             {8, ChannelRole::perc, "Perc 3"}};
    EXPECT_EQ(generationTemplate(GenerationMode::drums).slots, expected);
    EXPECT_EQ(&generationTemplate(GenerationMode::drums), &GenerationTemplate::torvoV1());
}

TEST(GenerationTemplate, loopsAndStabsHaveEightSlotsOfOneRole) {
    struct Row {
        const GenerationTemplate& uniform;
        GenerationMode mode;
        ChannelRole role;
        std::string word;
    };
    const Row rows[] = {
        {GenerationTemplate::torvoLoopsV1(), GenerationMode::loops, ChannelRole::loop, "Loop "},
        {GenerationTemplate::torvoStabsV1(), GenerationMode::stabs, ChannelRole::stab, "Stab "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(&generationTemplate(row.mode), &row.uniform);
        ASSERT_EQ(row.uniform.slots.size(), 8U);
        for (std::int64_t channel = 1; channel <= 8; ++channel) {
            const TemplateSlot expected{channel, row.role, row.word + std::to_string(channel)};
            EXPECT_EQ(row.uniform.slots[static_cast<std::size_t>(channel - 1)], expected);
        }
    }
}

TEST(GenerationTemplate, comparesEveryField) {
    const TemplateSlot slot{1, ChannelRole::kick, "Kick"};
    EXPECT_NE(slot, (TemplateSlot{2, ChannelRole::kick, "Kick"}));
    EXPECT_NE(slot, (TemplateSlot{1, ChannelRole::snare, "Kick"}));
    EXPECT_NE(slot, (TemplateSlot{1, ChannelRole::kick, "kick"}));
    const TemplateSlot other{2, ChannelRole::clap, "Clap"};
    const GenerationTemplate both{"T", {slot, other}};
    EXPECT_EQ(both, (GenerationTemplate{"T", {slot, other}}));
    EXPECT_NE(both, (GenerationTemplate{"T", {other, slot}})) << "slot order counts";
    EXPECT_NE(both, (GenerationTemplate{"U", {slot, other}}));
}

} // namespace
} // namespace torvo::test
