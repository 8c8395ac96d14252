#include "Models/TorvoMetadataOptions.h"

#include <gtest/gtest.h>

#include <limits>

namespace torvo::test {
namespace {

TorvoMetadataOptions withBits(std::int64_t bits) {
    return {bits, TorvoPlaybackRate::rate44, TorvoFilterType::off, false, {}};
}

TorvoMetadataOptions withCV(bool enabled, const std::set<std::int64_t>& channels) {
    return {16, TorvoPlaybackRate::rate44, TorvoFilterType::off, enabled, channels};
}

TEST(TorvoPlaybackRate, hasItsNumberNameAndStoredByte) {
    struct Row {
        TorvoPlaybackRate rate;
        std::int64_t rawValue;
        const char* name;
        int storedByte; ///< counts down: the fastest is 0
    };
    const Row rows[] = {
        {TorvoPlaybackRate::rate4, 4, "4", 7},    {TorvoPlaybackRate::rate6, 6, "6", 6},
        {TorvoPlaybackRate::rate7, 7, "7", 5},    {TorvoPlaybackRate::rate9, 9, "9", 4},
        {TorvoPlaybackRate::rate11, 11, "11", 3}, {TorvoPlaybackRate::rate14, 14, "14", 2},
        {TorvoPlaybackRate::rate22, 22, "22", 1}, {TorvoPlaybackRate::rate44, 44, "44", 0},
    };
    ASSERT_EQ(std::size(rows), allTorvoPlaybackRates.size());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(allTorvoPlaybackRates[i], rows[i].rate);
        EXPECT_EQ(rawValue(rows[i].rate), rows[i].rawValue);
        EXPECT_EQ(displayName(rows[i].rate), rows[i].name);
        EXPECT_EQ(storedByte(rows[i].rate), rows[i].storedByte) << rows[i].name;
        EXPECT_EQ(torvoPlaybackRate(rows[i].rawValue), rows[i].rate);
    }
}

TEST(TorvoPlaybackRate, refusesOtherNumbers) {
    int found = 0;
    for (std::int64_t number = -100; number <= 100; ++number)
        found += torvoPlaybackRate(number) ? 1 : 0;
    EXPECT_EQ(found, 8);
    EXPECT_EQ(torvoPlaybackRate(8), std::nullopt);
    EXPECT_EQ(torvoPlaybackRate(44100), std::nullopt);
}

TEST(TorvoFilterType, hasItsCodeAndName) {
    struct Row {
        TorvoFilterType filter;
        std::int64_t rawValue;
        const char* name;
    };
    const Row rows[] = {
        {TorvoFilterType::off, 0, "Off"},     {TorvoFilterType::lowPass, 1, "LP"},
        {TorvoFilterType::bandPass, 2, "BP"}, {TorvoFilterType::notch, 3, "NT"},
        {TorvoFilterType::highPass, 4, "HP"},
    };
    ASSERT_EQ(std::size(rows), allTorvoFilterTypes.size());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(allTorvoFilterTypes[i], rows[i].filter);
        EXPECT_EQ(rawValue(rows[i].filter), rows[i].rawValue);
        EXPECT_EQ(displayName(rows[i].filter), rows[i].name);
        EXPECT_EQ(torvoFilterType(rows[i].rawValue), rows[i].filter);
    }
    EXPECT_EQ(torvoFilterType(-1), std::nullopt);
    EXPECT_EQ(torvoFilterType(5), std::nullopt);
}

TEST(TorvoMetadataOptions, clampsTheBitDepth) {
    struct Row {
        std::int64_t given;
        std::int64_t kept;
    };
    const Row rows[] = {{0, 1},
                        {1, 1},
                        {2, 2},
                        {15, 15},
                        {16, 16},
                        {17, 16},
                        {24, 16},
                        {-5, 1},
                        {std::numeric_limits<std::int64_t>::min(), 1},
                        {std::numeric_limits<std::int64_t>::max(), 16}};
    for (const auto& row : rows)
        EXPECT_EQ(withBits(row.given).bits, row.kept) << row.given;
}

TEST(TorvoMetadataOptions, keepsOnlyChannelsOfTheDevice) {
    EXPECT_EQ(withCV(true, {0, 1, 8, 9}).cvAssignedChannels, (std::set<std::int64_t>{1, 8}));
    EXPECT_EQ(withCV(true, {-1, 100}).cvAssignedChannels, std::set<std::int64_t>{});
    EXPECT_EQ(withCV(false, {3}).cvAssignedChannels, std::set<std::int64_t>{3});
}

TEST(TorvoMetadataOptions, storesOtherFieldsUnchanged) {
    const TorvoMetadataOptions options(8, TorvoPlaybackRate::rate11, TorvoFilterType::notch, true,
                                       {2});
    EXPECT_EQ(options.bits, 8);
    EXPECT_EQ(options.rate, TorvoPlaybackRate::rate11);
    EXPECT_EQ(options.filterType, TorvoFilterType::notch);
    EXPECT_TRUE(options.cvAssignmentsEnabled);
}

TEST(TorvoMetadataOptions, appliesCVToTheAssignedChannelsWhenEnabled) {
    const auto enabled = withCV(true, {1, 3});
    const auto disabled = withCV(false, {1, 2, 3, 4, 5, 6, 7, 8});
    for (std::int64_t channel = -1; channel <= 10; ++channel) {
        EXPECT_EQ(enabled.appliesCV(channel), channel == 1 || channel == 3) << channel;
        EXPECT_FALSE(disabled.appliesCV(channel)) << channel;
    }
    EXPECT_FALSE(withCV(true, {1, 2, 3, 4, 5, 6, 7, 8}).appliesCV(std::nullopt));
    auto filtered = enabled;
    filtered.filterType = TorvoFilterType::highPass;
    EXPECT_TRUE(filtered.appliesCV(3)) << "independent of the filter";
}

} // namespace
} // namespace torvo::test
