#include "AudioFixtures.h"
#include "ConversionCache.h"
#include "Models/GenerationError.h"
#include "ProcessResources.h"
#include "TreeSnapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <cstring>
#include <map>
#include <mutex>
#include <string>

namespace torvo::test {
namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20U;

/// Converts a sample to `fileSize` bytes that begin with its path, and counts how often.
class CountingPreparer final : public AudioFilePreparing {
public:
    explicit CountingPreparer(std::size_t fileSize) : fileSize_(fileSize) {}

    SamplePreparationMode prepare(const SampleCandidate&, const FileURL&,
                                  const SampleEdit& = {}) const override {
        return SamplePreparationMode::converted;
    }

    std::shared_ptr<const ConvertedFile> convertedFile(const SampleCandidate& sample,
                                                       std::size_t maxSize,
                                                       const std::stop_token&) const override {
        const auto path = sample.sourceURL.path().string();
        const std::lock_guard lock(mutex_);
        ++counts_[path];
        if (path == failingPath)
            throw GenerationError::exportFailed("cannot convert " + path);
        if (fileSize_ > maxSize)
            return nullptr;
        auto file = std::make_shared<ConvertedFile>(fileSize_);
        std::memcpy(file->data(), path.data(), path.size());
        return file;
    }

    std::map<std::string, int> counts() const {
        const std::lock_guard lock(mutex_);
        return counts_;
    }

    std::string failingPath;

private:
    std::size_t fileSize_; ///< bytes
    mutable std::mutex mutex_;
    mutable std::map<std::string, int> counts_;
};

SampleCandidate sampleNamed(const std::string& name) {
    return sampleToConvert("/" + name);
}

std::vector<const SampleCandidate*> usesOf(const std::vector<SampleCandidate>& samples,
                                           std::initializer_list<std::size_t> order) {
    std::vector<const SampleCandidate*> uses;
    for (const std::size_t index : order)
        uses.push_back(&samples[index]);
    return uses;
}

template <typename Work>
void onThreads(int threads, Work work) {
    const tbb::global_control allowed(tbb::global_control::max_allowed_parallelism,
                                      static_cast<std::size_t>(threads));
    tbb::task_arena arena(threads);
    arena.execute(work);
}

/// Takes every use twice, as an export does, and checks that each result belongs to its sample.
void takeAll(ConversionCache& cache, const std::vector<const SampleCandidate*>& uses) {
    for (std::size_t use = 0; use < uses.size(); ++use) {
        for (int copy = 0; copy < 2; ++copy) {
            const auto file = cache.take(use);
            ASSERT_NE(file, nullptr) << use;
            EXPECT_STREQ(reinterpret_cast<const char*>(file->data()),
                         uses[use]->sourceURL.path().c_str());
        }
    }
}

TEST(ConversionCache, convertsEachSampleOnceWhileTheBudgetLasts) {
    const std::vector samples{sampleNamed("a"), sampleNamed("b"), sampleNamed("c")};
    const auto uses = usesOf(samples, {0, 1, 2, 0, 2, 1, 1, 0});
    for (const int threads : {1, 2, 8}) {
        const auto preparer = std::make_shared<CountingPreparer>(1000);
        onThreads(threads, [&] {
            ConversionCache cache(preparer, uses, ConversionCache::defaultMemoryBudget);
            takeAll(cache, uses);
        });
        EXPECT_THAT(preparer->counts(),
                    testing::ElementsAre(testing::Pair("/a", 1), testing::Pair("/b", 1),
                                         testing::Pair("/c", 1)));
    }
}

TEST(ConversionCache, evictsTheFileWithTheMostDistantUse) {
    const std::vector samples{sampleNamed("a"), sampleNamed("b"), sampleNamed("c")};
    const auto uses = usesOf(samples, {0, 1, 2, 0, 1, 2});
    const auto preparer = std::make_shared<CountingPreparer>(3 * mebibyte);
    onThreads(1, [&] {
        ConversionCache cache(preparer, uses, 8 * mebibyte);
        takeAll(cache, uses);
    });
    // After "c", its next use is the most distant of the three.
    EXPECT_THAT(preparer->counts(),
                testing::ElementsAre(testing::Pair("/a", 1), testing::Pair("/b", 1),
                                     testing::Pair("/c", 2)));
}

TEST(ConversionCache, servesBothCopiesOfAUseWithoutABudget) {
    const std::vector samples{sampleNamed("a"), sampleNamed("b")};
    const auto uses = usesOf(samples, {0, 1, 0});
    for (const int threads : {1, 8}) {
        const auto preparer = std::make_shared<CountingPreparer>(1000);
        onThreads(threads, [&] {
            ConversionCache cache(preparer, uses, 0);
            takeAll(cache, uses);
        });
        EXPECT_THAT(preparer->counts(),
                    testing::ElementsAre(testing::Pair("/a", 2), testing::Pair("/b", 1)));
    }
}

TEST(ConversionCache, leavesLongAndCopiedSamplesToThePreparer) {
    std::vector samples{sampleNamed("a"), sampleNamed("b")};
    samples[1].compatibility = CompatibleWav{};
    const auto uses = usesOf(samples, {0, 1});
    const auto preparer = std::make_shared<CountingPreparer>(5 * mebibyte);
    ConversionCache cache(preparer, uses, 0); // one file may then take 4 MiB
    EXPECT_EQ(cache.take(0), nullptr);
    EXPECT_EQ(cache.take(0), nullptr);
    EXPECT_EQ(cache.take(1), nullptr);
    EXPECT_THAT(preparer->counts(), testing::ElementsAre(testing::Pair("/a", 1)));
}

TEST(ConversionCache, copiesACompatibleSampleOfAConvertedPath) {
    std::vector samples{sampleNamed("a"), sampleNamed("a")};
    samples[1].compatibility = CompatibleWav{};
    const auto uses = usesOf(samples, {0, 1, 0});
    ConversionCache cache(std::make_shared<CountingPreparer>(1000), uses, mebibyte);
    EXPECT_NE(cache.take(0), nullptr);
    EXPECT_EQ(cache.take(1), nullptr);
    EXPECT_NE(cache.take(2), nullptr);
}

TEST(ConversionCache, reportsAFailureWhenTheSampleIsTaken) {
    const std::vector samples{sampleNamed("a"), sampleNamed("b"), sampleNamed("c")};
    const auto uses = usesOf(samples, {0, 1, 2});
    for (const int threads : {1, 4}) {
        const auto preparer = std::make_shared<CountingPreparer>(1000);
        preparer->failingPath = "/b";
        onThreads(threads, [&] {
            ConversionCache cache(preparer, uses, ConversionCache::defaultMemoryBudget);
            EXPECT_NE(cache.take(0), nullptr);
            EXPECT_THROW(cache.take(1), GenerationError);
            EXPECT_THROW(cache.take(1), GenerationError);
        });
    }
}

TEST(ConversionCache, yieldsTheSameFileAsThePreparer) {
    const TemporaryFolder folder;
    const auto sample = sampleToConvert(folder.write("a.wav", wavFile({48000, 2, 24}, 20'011)));
    const auto preparer = std::make_shared<AVAudioSamplePreparer>();
    preparer->prepare(sample, FileURL(folder / "written.wav"));
    const std::vector uses{&sample};
    ConversionCache cache(preparer, uses, mebibyte);
    const auto file = cache.take(0);
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(*file == bytesOf(folder / "written.wav"));
}

TEST(ConversionCache, releasesEverythingWhenARunIsAbandoned) {
    const TemporaryFolder folder;
    std::vector<SampleCandidate> samples;
    for (int i = 0; i < 40; ++i) {
        samples.push_back(sampleToConvert(
            folder.write(std::to_string(i) + ".wav",
                         wavOf(48000, testSignal(9600 + 100 * static_cast<std::size_t>(i))))));
    }
    samples.push_back(
        sampleToConvert(folder.write("long.wav", wavFile({22050, 1, 16}, 40 * 22050))));
    std::vector<const SampleCandidate*> uses;
    for (const auto& sample : samples)
        uses.push_back(&sample);
    const auto abandonRuns = [&] {
        for (int i = 0; i < 20; ++i) {
            ConversionCache cache(std::make_shared<AVAudioSamplePreparer>(), uses,
                                  ConversionCache::defaultMemoryBudget);
            EXPECT_NE(cache.take(0), nullptr);
        }
    };
    constexpr int threads = 4;
    onThreads(threads, [&] {
        abandonRuns(); // one-time allocations of libraries
        const auto heldBefore = processResources();
        abandonRuns();
        const auto heldAfter = processResources();
        EXPECT_EQ(heldAfter.openFiles, heldBefore.openFiles);
        // oneTBB starts its worker threads lazily, up to this number.
        EXPECT_LE(heldAfter.threads, heldBefore.threads + threads);
    });
}

} // namespace
} // namespace torvo::test
