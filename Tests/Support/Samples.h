#pragma once

#include "Models/SampleRecords.h"

#include <cstddef>
#include <string>
#include <vector>

namespace torvo::test {

/// A sample that the device takes unchanged, named "kick1" for the first of a role.
SampleCandidate compatibleSample(ChannelRole role, std::size_t number);

/// A sample at a path, copied unchanged, under a display name of its own.
SampleCandidate sampleAt(const std::filesystem::path& path, const std::string& displayName);

/// `count` samples, numbered from 1.
std::vector<SampleCandidate> bucketOf(ChannelRole role, std::size_t count);

} // namespace torvo::test
