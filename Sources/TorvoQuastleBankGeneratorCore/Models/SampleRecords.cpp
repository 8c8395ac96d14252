#include "Models/SampleRecords.h"

namespace torvo {

namespace {

/// Shared by the const and the non-const accessor.
template <typename Buckets>
auto& listOf(Buckets& buckets, ChannelRole role) {
    switch (role) {
    case ChannelRole::kick:
        return buckets.kick;
    case ChannelRole::closedHat:
        return buckets.closedHat;
    case ChannelRole::openHat:
        return buckets.openHat;
    case ChannelRole::snare:
        return buckets.snare;
    case ChannelRole::clap:
        return buckets.clap;
    case ChannelRole::perc:
        return buckets.perc;
    case ChannelRole::loop:
        return buckets.loop;
    case ChannelRole::stab:
        break;
    }
    return buckets.stab;
}

} // namespace

const std::vector<SampleCandidate>& RoleBuckets::samples(ChannelRole role) const {
    return listOf(*this, role);
}

std::vector<SampleCandidate>& RoleBuckets::samples(ChannelRole role) {
    return listOf(*this, role);
}

std::map<ChannelRole, std::int64_t> RoleBuckets::countsByRole() const {
    std::map<ChannelRole, std::int64_t> counts;
    for (const auto role : allChannelRoles)
        counts[role] = static_cast<std::int64_t>(samples(role).size());
    return counts;
}

} // namespace torvo
