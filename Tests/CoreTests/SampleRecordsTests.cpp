#include "Models/SampleRecords.h"
#include "Samples.h"

#include <gtest/gtest.h>

namespace torvo::test {
namespace {

TEST(RoleBuckets, countsAllEightRolesWhenEmpty) {
    const auto counts = RoleBuckets{}.countsByRole();
    ASSERT_EQ(counts.size(), 8U);
    for (const auto role : allChannelRoles)
        EXPECT_EQ(counts.at(role), 0) << displayName(role);
}

TEST(RoleBuckets, addsACandidateToTheListOfItsRoleOnly) {
    for (const auto role : allChannelRoles) {
        RoleBuckets buckets;
        const auto candidate = compatibleSample(role, 1);
        buckets.samples(role).push_back(candidate);
        for (const auto other : allChannelRoles) {
            const auto& list = std::as_const(buckets).samples(other);
            EXPECT_EQ(list, other == role ? std::vector{candidate} : std::vector<SampleCandidate>{})
                << displayName(role) << " seen from " << displayName(other);
        }
        EXPECT_EQ(buckets.countsByRole().at(role), 1);
    }
}

TEST(RoleBuckets, hasAListForEveryRole) {
    RoleBuckets buckets;
    const std::vector<std::pair<ChannelRole, std::vector<SampleCandidate>*>> lists{
        {ChannelRole::kick, &buckets.kick},       {ChannelRole::closedHat, &buckets.closedHat},
        {ChannelRole::openHat, &buckets.openHat}, {ChannelRole::snare, &buckets.snare},
        {ChannelRole::clap, &buckets.clap},       {ChannelRole::perc, &buckets.perc},
        {ChannelRole::loop, &buckets.loop},       {ChannelRole::stab, &buckets.stab}};
    for (const auto& [role, list] : lists)
        EXPECT_EQ(&buckets.samples(role), list) << displayName(role);
}

TEST(ScanReport, reportsTheCountsOfItsBuckets) {
    ScanReport report;
    report.buckets.perc = bucketOf(ChannelRole::perc, 3);
    report.buckets.stab = bucketOf(ChannelRole::stab, 2);
    EXPECT_EQ(report.countsByRole(), report.buckets.countsByRole());
    EXPECT_EQ(report.countsByRole().at(ChannelRole::perc), 3);
}

TEST(SampleCandidate, comparesEveryField) {
    const auto original = compatibleSample(ChannelRole::kick, 1);
    EXPECT_EQ(original, compatibleSample(ChannelRole::kick, 1));
    const auto changed = [&](auto change) {
        auto copy = original;
        change(copy);
        return copy;
    };
    EXPECT_NE(original, changed([](auto& c) { c.sourceURL = FileURL("/Kit/other.wav"); }));
    EXPECT_NE(original, changed([](auto& c) { c.role = ChannelRole::clap; }));
    EXPECT_NE(original, changed([](auto& c) { c.displayName = "Kick1"; }));
    EXPECT_NE(original, changed([](auto& c) { c.compatibility = RequiresConversion{""}; }));
    EXPECT_NE(original, changed([](auto& c) { c.formatDetails.fileExtension = "aif"; }));
    EXPECT_NE(original, changed([](auto& c) { c.formatDetails.sampleRate = 44100.1; }));
    EXPECT_NE(original, changed([](auto& c) { c.formatDetails.channels = 2; }));
    EXPECT_NE(original, changed([](auto& c) { c.formatDetails.bitDepth = 24; }));
    EXPECT_NE(original, changed([](auto& c) { c.formatDetails.isLinearPCM = false; }));
}

TEST(SampleCandidate, comparesConversionReasons) {
    auto one = compatibleSample(ChannelRole::kick, 1);
    auto two = one;
    one.compatibility = RequiresConversion{"bit depth 8"};
    two.compatibility = RequiresConversion{"bit depth 32"};
    EXPECT_NE(one, two);
    two.compatibility = RequiresConversion{"bit depth 8"};
    EXPECT_EQ(one, two);
}

} // namespace
} // namespace torvo::test
