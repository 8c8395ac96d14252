#include "Samples.h"

namespace torvo::test {

SampleCandidate compatibleSample(ChannelRole role, std::size_t number) {
    const auto name = std::string(rawValue(role)) + std::to_string(number);
    auto sample = sampleAt("/Kit/" + name + ".wav", name);
    sample.role = role;
    return sample;
}

SampleCandidate sampleAt(const std::filesystem::path& path, const std::string& displayName) {
    return {FileURL(path), ChannelRole::kick, displayName, CompatibleWav{},
            AudioFormatDetails{"wav", 44100, 1, 16, true}};
}

std::vector<SampleCandidate> bucketOf(ChannelRole role, std::size_t count) {
    std::vector<SampleCandidate> bucket;
    for (std::size_t number = 1; number <= count; ++number)
        bucket.push_back(compatibleSample(role, number));
    return bucket;
}

} // namespace torvo::test
