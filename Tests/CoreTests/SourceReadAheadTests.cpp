#include "AudioFixtures.h"
#include "Models/GenerationError.h"
#include "SourceReadAhead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <latch>
#include <mutex>
#include <numeric>
#include <string>

namespace torvo::test {
namespace {

using testing::ElementsAre;

constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20U;

/// Accepts every sample and fails for those called "broken".
class PreparerOfNames final : public AudioFilePreparing {
public:
    SamplePreparationMode prepare(const SampleCandidate& sample, const FileURL&,
                                  const SampleEdit& = {}) const override {
        if (sample.displayName == "broken")
            throw GenerationError::exportFailed("broken");
        return SamplePreparationMode::copied;
    }

    std::shared_ptr<const ConvertedFile> convertedFile(const SampleCandidate&, std::size_t maxSize,
                                                       const std::stop_token&) const override {
        return std::make_shared<ConvertedFile>(maxSize);
    }
};

/// Files of a size of their own, none of which exists, and the requests to read them.
class Requests {
public:
    explicit Requests(std::uint64_t fileSize) : fileSize_(fileSize) {}

    std::uint64_t add(const std::filesystem::path& path, std::uint64_t maxSize) {
        const std::lock_guard lock(mutex_);
        const auto size = std::min(fileSize_, maxSize);
        names_.push_back(path.filename());
        sizes_.push_back(size);
        added_.notify_all();
        return size;
    }

    void waitFor(std::size_t count) {
        std::unique_lock lock(mutex_);
        added_.wait(lock, [&] { return names_.size() >= count; });
    }

    std::vector<std::string> names() const {
        const std::lock_guard lock(mutex_);
        return names_;
    }

    std::uint64_t totalSize() const {
        const std::lock_guard lock(mutex_);
        return std::accumulate(sizes_.begin(), sizes_.end(), std::uint64_t{0});
    }

private:
    std::uint64_t fileSize_;
    mutable std::mutex mutex_;
    std::condition_variable added_;
    std::vector<std::string> names_;
    std::vector<std::uint64_t> sizes_;
};

std::vector<SampleCandidate> samplesNamed(const std::vector<std::string>& names) {
    std::vector<SampleCandidate> samples;
    for (const auto& name : names)
        samples.push_back(sampleToConvert("/" + name));
    return samples;
}

std::vector<const SampleCandidate*> usesOf(const std::vector<SampleCandidate>& samples) {
    std::vector<const SampleCandidate*> uses;
    for (const auto& sample : samples)
        uses.push_back(&sample);
    return uses;
}

const FileURL destination("/card/a.wav");

TEST(SourceReadAhead, readsEachFileOnceInTheOrderOfUse) {
    Requests requests(mebibyte);
    const auto samples = samplesNamed({"c", "a", "c", "b", "a"});
    const SourceReadAhead ahead(
        std::make_shared<PreparerOfNames>(), usesOf(samples),
        [&](const auto& path, std::uint64_t maxSize) { return requests.add(path, maxSize); });
    requests.waitFor(3);
    EXPECT_THAT(requests.names(), ElementsAre("c", "a", "b"));
}

TEST(SourceReadAhead, stopsAtTheLimitUntilASampleIsUsed) {
    Requests requests(SourceReadAhead::maxBytesAhead / 2 - 1);
    const auto samples = samplesNamed({"a", "b", "c", "d", "e", "f"});
    {
        const SourceReadAhead ahead(
            std::make_shared<PreparerOfNames>(), usesOf(samples),
            [&](const auto& path, std::uint64_t maxSize) { return requests.add(path, maxSize); });
        requests.waitFor(3); // of the third file, two bytes fit
        ahead.prepare(samples[0], destination);
        requests.waitFor(4);
        ahead.convertedFile(samples[1], 1, {});
        requests.waitFor(5);
    }
    EXPECT_THAT(requests.names(), ElementsAre("a", "b", "c", "d", "e"));
    EXPECT_EQ(requests.totalSize(), 2 * SourceReadAhead::maxBytesAhead - 2);
}

TEST(SourceReadAhead, passesOverSamplesThatAreUsedAlready) {
    Requests requests(mebibyte);
    const auto samples = samplesNamed({"a", "b", "c"});
    std::latch bIsUsed(1);
    const SourceReadAhead ahead(std::make_shared<PreparerOfNames>(), usesOf(samples),
                                [&](const auto& path, std::uint64_t maxSize) {
                                    bIsUsed.wait();
                                    return requests.add(path, maxSize);
                                });
    ahead.prepare(samples[1], destination);
    bIsUsed.count_down();
    requests.waitFor(2);
    EXPECT_THAT(requests.names(), ElementsAre("a", "c"));
}

TEST(SourceReadAhead, leavesResultsAndErrorsToThePreparer) {
    Requests requests(mebibyte);
    auto samples = samplesNamed({"a", "b"});
    samples[1].displayName = "broken";
    const SourceReadAhead ahead(
        std::make_shared<PreparerOfNames>(), usesOf(samples),
        [&](const auto& path, std::uint64_t maxSize) { return requests.add(path, maxSize); });
    EXPECT_EQ(ahead.prepare(samples[0], destination), SamplePreparationMode::copied);
    EXPECT_EQ(ahead.convertedFile(samples[0], 3, {})->size(), 3U);
    EXPECT_THROW(ahead.prepare(samples[1], destination), GenerationError);
}

} // namespace
} // namespace torvo::test
