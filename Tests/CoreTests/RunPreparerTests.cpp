#include "AudioFixtures.h"
#include "AudioSupport/RunPreparer.h"
#include "ProcessResources.h"
#include "Models/GenerationError.h"
#include "TreeSnapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

/// Banks whose channels take the samples in turn.
std::vector<BankRecipe> recipesOf(const std::vector<SampleCandidate>& samples, int bankCount) {
    std::vector<BankRecipe> recipes;
    std::size_t next = 0;
    for (int bank = 1; bank <= bankCount; ++bank) {
        BankRecipe recipe;
        recipe.bankIndex = bank;
        for (std::int64_t channel = 1; channel <= 8; ++channel)
            recipe.channels[channel] = samples[next++ % samples.size()];
        recipes.push_back(recipe);
    }
    return recipes;
}

fs::path destinationOf(const fs::path& folder, const BankRecipe& recipe, std::int64_t channel,
                       bool isPool) {
    return folder / (std::to_string(recipe.bankIndex) + "-" + std::to_string(channel) +
                     (isPool ? "-pool.wav" : ".wav"));
}

/// Prepares as an export does, with the stamp's growth of every file.
void exportAll(const AudioFilePreparing& preparer, const std::vector<BankRecipe>& recipes,
               const fs::path& folder) {
    fs::create_directories(folder);
    for (const BankRecipe& recipe : recipes) {
        for (const auto& [channel, sample] : recipe.channels) {
            for (const bool isPool : {false, true}) {
                const auto destination = destinationOf(folder, recipe, channel, isPool);
                preparer.prepare(sample, FileURL(destination));
                const auto file = systemFileManager()->open(destination, OpenMode::update);
                file->write(file->size(), bytes("stamp"));
            }
        }
    }
}

std::map<std::string, std::vector<std::byte>> contentOf(const fs::path& folder) {
    std::map<std::string, std::vector<std::byte>> content;
    for (const auto& entry : fs::directory_iterator(folder))
        content[entry.path().filename()] = bytesOf(entry.path());
    return content;
}

class RunPreparerTest : public testing::Test {
protected:
    /// `count` files at 48 kHz of 0.2 s and more, all different.
    std::vector<SampleCandidate> makeSamples(std::size_t count) const {
        std::vector<SampleCandidate> samples;
        for (std::size_t i = 0; i < count; ++i) {
            const auto path = folder.write("source/" + std::to_string(i) + ".wav",
                                           wavOf(48000, testSignal(9600 + 100 * i)));
            samples.push_back(sampleToConvert(path));
        }
        return samples;
    }

    std::shared_ptr<const FileManager> countingFileManager() {
        return hookedFileManager({.onOpen = [this](const fs::path& path, OpenMode) {
            const std::lock_guard lock(mutex);
            ++openings[path.filename().string()];
        }});
    }

    TemporaryFolder folder;
    std::mutex mutex;
    std::map<std::string, int> openings; ///< by file name
};

TEST_F(RunPreparerTest, writesWhatThePlainPreparerWrites) {
    auto samples = makeSamples(11);
    samples.push_back(
        sampleToCopy(folder.write("source/copied.wav", wavOf(44100, testSignal(99)))));
    const auto recipes = recipesOf(samples, 5);
    exportAll(AVAudioSamplePreparer{}, recipes, folder / "plain");
    const auto expected = contentOf(folder / "plain");
    ASSERT_EQ(expected.size(), 80U);
    for (const int threads : {1, 2, 8}) {
        for (const std::size_t budget :
             {std::size_t{0}, std::size_t{9} << 20U, std::size_t{128} << 20U}) {
            const auto target = folder / ("run" + std::to_string(threads));
            const tbb::global_control allowed(tbb::global_control::max_allowed_parallelism,
                                              static_cast<std::size_t>(threads));
            tbb::task_arena arena(threads);
            arena.execute([&] {
                exportAll(RunPreparer(systemFileManager(), recipes, budget), recipes, target);
            });
            EXPECT_TRUE(contentOf(target) == expected) << threads << " threads, " << budget;
        }
    }
    const tbb::global_control one(tbb::global_control::max_allowed_parallelism, 1);
    exportAll(*AVAudioSamplePreparer{}.forRun(recipes), recipes, folder / "one");
    EXPECT_TRUE(contentOf(folder / "one") == expected);
}

TEST_F(RunPreparerTest, convertsEachSampleOnce) {
    const auto recipes = recipesOf(makeSamples(5), 6);
    for (const std::size_t budget : {std::size_t{0}, RunPreparer::defaultMemoryBudget}) {
        openings.clear();
        exportAll(RunPreparer(countingFileManager(), recipes, budget), recipes, folder / "out");
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(openings[std::to_string(i) + ".wav"], 1) << i;
    }
}

TEST_F(RunPreparerTest, aRecordingTooLongToHoldIsConvertedOnceAllTheSame) {
    // 100 s: more than the least share of a budget.
    const auto path = folder.write("long.wav", wavFile({22050, 1, 16}, 100 * 22050));
    const auto recipes = recipesOf({sampleToConvert(path)}, 1);
    exportAll(RunPreparer(countingFileManager(), recipes, 0), recipes, folder / "out");
    // Looked at, then converted; the copies come from the first file of the run.
    EXPECT_EQ(openings["long.wav"], 2);
    fs::create_directories(folder / "plain");
    AVAudioSamplePreparer{}.prepare(sampleToConvert(path), FileURL(folder / "plain/a.wav"));
    auto expected = bytesOf(folder / "plain/a.wav");
    append(expected, "stamp");
    for (const auto& [name, content] : contentOf(folder / "out"))
        EXPECT_TRUE(content == expected) << name;
}

TEST_F(RunPreparerTest, audioThatChangedOnDiskIsConvertedAgain) {
    const auto samples = makeSamples(1);
    const auto recipes = recipesOf(samples, 1);
    const auto expected = convertedFrames(samples[0].sourceURL.path());
    struct Row {
        const char* name;
        std::function<void(const fs::path&)> harm;
    };
    const Row rows[] = {
        {"a changed frame",
         [](const fs::path& path) {
             systemFileManager()->open(path, OpenMode::update)->write(4000, bytes("x"));
         }},
        {"a changed header",
         [](const fs::path& path) {
             systemFileManager()->open(path, OpenMode::update)->write(24, bytes("x"));
         }},
        {"cut short", [](const fs::path& path) { fs::resize_file(path, 1000); }},
        {"gone", [](const fs::path& path) { fs::remove(path); }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const RunPreparer preparer(systemFileManager(), recipes);
        for (int i = 0; i < 2; ++i)
            preparer.prepare(samples[0], FileURL(folder / "first.wav"));
        row.harm(folder / "first.wav");
        preparer.prepare(samples[0], FileURL(folder / "third.wav"));
        EXPECT_TRUE(deviceFrames(folder / "third.wav") == expected);
    }
}

TEST_F(RunPreparerTest, reportsTheFailureOfTheSampleThatIsAskedFor) {
    auto samples = makeSamples(20);
    samples[9] = sampleToConvert(folder.write("source/first.wav", "text"));
    samples[12] = sampleToConvert(folder / "source/second.wav");
    const auto recipes = recipesOf(samples, 3);
    for (const int threads : {1, 4}) {
        const tbb::global_control allowed(tbb::global_control::max_allowed_parallelism,
                                          static_cast<std::size_t>(threads));
        tbb::task_arena arena(threads);
        arena.execute([&] {
            const RunPreparer preparer(systemFileManager(), recipes);
            try {
                exportAll(preparer, recipes, folder / "out");
                FAIL() << "nothing was thrown";
            } catch (const GenerationError& error) {
                EXPECT_EQ(error.errorDescription(),
                          "Unable to open source audio file first.wav. (OSStatus -1094995529)");
            }
        });
        EXPECT_TRUE(fs::exists(folder / "out/2-1-pool.wav"));
        EXPECT_FALSE(fs::exists(folder / "out/2-2.wav"));
    }
}

TEST_F(RunPreparerTest, saysWhyTheDestinationCannotBeWritten) {
    const auto samples = makeSamples(1);
    const auto recipes = recipesOf(samples, 1);
    EXPECT_EQ(failureOf(RunPreparer(systemFileManager(), recipes), samples[0], folder / "no/b.wav"),
              "Unable to create destination WAV file b.wav. (OSStatus -2)");
    const auto fullCard = hookedFileManager({.onWrite = [](const fs::path& path, const FilePart&) {
        throw FileError(FileOperation::write, path, ENOSPC);
    }});
    EXPECT_EQ(failureOf(RunPreparer(fullCard, recipes), samples[0], folder / "b.wav"),
              "Unable to write converted audio data. (OSStatus -28)");
}

TEST_F(RunPreparerTest, replacesWhatStandsAtTheDestination) {
    const auto samples = makeSamples(1);
    const auto recipes = recipesOf(samples, 1);
    const RunPreparer preparer(systemFileManager(), recipes);
    const auto expected = convertedFrames(samples[0].sourceURL.path());
    for (int i = 0; i < 4; ++i) {
        const auto destination =
            folder.write(std::to_string(i) + ".wav", std::string(500'000, 'x'));
        EXPECT_EQ(preparer.prepare(samples[0], FileURL(destination)),
                  SamplePreparationMode::converted);
        EXPECT_TRUE(deviceFrames(destination) == expected);
    }
}

TEST_F(RunPreparerTest, servesSamplesOutsideTheRun) {
    const auto samples = makeSamples(2);
    const RunPreparer preparer(systemFileManager(), recipesOf({samples[0]}, 1));
    preparer.prepare(samples[1], FileURL(folder / "b.wav"));
    EXPECT_TRUE(deviceFrames(folder / "b.wav") == convertedFrames(samples[1].sourceURL.path()));
    EXPECT_NO_THROW(RunPreparer(systemFileManager(), {}));
}

TEST_F(RunPreparerTest, anAbandonedRunLeavesNothingBehind) {
    constexpr int runs = 20;
    constexpr int threads = 4;
    const auto recipes = recipesOf(makeSamples(40), 5);
    const auto path = folder.write("long.wav", wavFile({22050, 1, 16}, 40 * 22050));
    const auto recipesOfLong = recipesOf({sampleToConvert(path)}, 1);
    const auto abandonRuns = [&] {
        for (int i = 0; i < runs; ++i) {
            const RunPreparer preparer(systemFileManager(), recipes);
            preparer.prepare(recipes[0].channels.at(1), FileURL(folder / "b.wav"));
            RunPreparer(systemFileManager(), recipesOfLong);
        }
    };
    const tbb::global_control allowed(tbb::global_control::max_allowed_parallelism, threads);
    tbb::task_arena arena(threads);
    arena.execute([&] {
        abandonRuns(); // what libraries make once and keep
        const auto heldBefore = processResources();
        const auto treeBefore = snapshotOf(folder.path(), Times::doNotCount);
        abandonRuns();
        const auto heldAfter = processResources();
        EXPECT_EQ(heldAfter.openFiles, heldBefore.openFiles);
        // The task library starts its own threads when it likes, and no more than these.
        EXPECT_LE(heldAfter.threads, heldBefore.threads + threads);
        EXPECT_THAT(differences(treeBefore, snapshotOf(folder.path(), Times::doNotCount)),
                    testing::IsEmpty());
    });
}

} // namespace
} // namespace torvo::test
