#include "BankExporter.h"
#include "BankGenerator.h"
#include "BankMappingStore.h"
#include "Models/GenerationError.h"
#include "SampleScanner.h"
#include "SmallLibrary.h"
#include "TemporaryFolder.h"
#include "TreeSnapshot.h"
#include "WavFixture.h"

#include <gmock/gmock.h>
#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <array>
#include <optional>
#include <ostream>
#include <set>
#include <string>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using testing::ValuesIn;

/// The conditions of a run. None of them may affect the result.
struct Conditions {
    const char* name;
    int threads;
    std::size_t memoryBudget; ///< bytes
};

constexpr std::size_t noMemory = 1;
constexpr std::size_t littleMemory = std::size_t{9} * 1024 * 1024;
constexpr std::array<Conditions, 7> allConditions{
    {{"oneThread", 1, ConversionCache::defaultMemoryBudget},
     {"twoThreads", 2, ConversionCache::defaultMemoryBudget},
     {"eightThreads", 8, ConversionCache::defaultMemoryBudget},
     {"twoThreadsThatHoldAFew", 2, littleMemory},
     {"eightThreadsThatHoldAFew", 8, littleMemory},
     {"oneThreadThatHoldsNothing", 1, noMemory},
     {"eightThreadsThatHoldNothing", 8, noMemory}}};

void PrintTo(const Conditions& conditions, std::ostream* out) {
    *out << conditions.name;
}

/// The complete output of a run.
struct Outcome {
    TreeSnapshot tree;
    std::string document;
    std::optional<ExportSummary> summary; ///< absent when it failed
    std::string failure;
};

/// Loops of all kinds: copied and converted, short and long, PCM and decoded by FFmpeg.
fs::path writeLoops(const TemporaryFolder& folder) {
    constexpr std::array<std::uint32_t, 4> rates{48000, 44100, 96000, 22050};
    for (std::size_t i = 0; i < 20; ++i) {
        const WavFormat format{.sampleRate = rates.at(i % rates.size()),
                               .channels = static_cast<std::uint16_t>(1 + i % 2),
                               .bits = 24};
        folder.write("Loops/loop " + std::to_string(i) + ".wav",
                     wavFile(format, 2000 + 7000 * (i % 5)));
    }
    for (std::uint32_t i = 0; i < 4; ++i)
        folder.write("Loops/tape " + std::to_string(i) + ".aif", aiffRamp(900 * (i + 1)));
    return folder / "Loops";
}

/// Scans, makes recipes and a document, calls `beforeExport` with the recipes, and exports.
template <typename BeforeExport>
Outcome run(const fs::path& source, GenerationMode mode, const fs::path& out,
            const Conditions& conditions, BeforeExport beforeExport) {
    const auto onThreads = [&] {
        const SampleScanner scanner(std::make_shared<AVAudioFileInspector>(), {},
                                    systemFileManager());
        const auto report = scanner.scan(FileURL::directory(source), mode);
        const BankNameScheme naming(report.sourceFolder.lastPathComponent());
        const BankMappingStore store;
        auto document = store.document(
            report.sourceFolder, mode, naming, generationTemplate(mode),
            BankGenerator{}.makeRecipes(report.buckets, mode, std::nullopt, 9, naming, 20240229));
        document.exportedAt = {};
        store.exportDocument(document, FileURL(out / "run.json"));
        beforeExport(document.recipes);

        Outcome outcome;
        const BankExporter exporter(systemFileManager(), std::make_shared<AVAudioSamplePreparer>(),
                                    TorvoWAVMetadataWriter(), conditions.memoryBudget);
        try {
            outcome.summary =
                exporter.exportBanks(exportJob(document, FileURL::directory(out), {}));
        } catch (const GenerationError& error) {
            outcome.failure = error.what();
        }
        outcome.tree = snapshotOf(out, Times::doNotCount);
        outcome.document = textOf(out / "run.json");
        return outcome;
    };
    const auto threads = static_cast<std::size_t>(conditions.threads);
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
    tbb::task_arena arena(conditions.threads);
    return arena.execute(onThreads);
}

void leaveAlone(const std::vector<BankRecipe>&) {}

class RunInvariance : public testing::TestWithParam<Conditions> {
protected:
    /// Performs the same run twice with the same folders: on one thread without a cache, and under
    /// the conditions of the parameter. Returns both results.
    template <typename WriteLibrary, typename BeforeExport = decltype(&leaveAlone)>
    Outcome compared(WriteLibrary writeLibrary, GenerationMode mode,
                     BeforeExport beforeExport = leaveAlone) {
        const auto outcomeUnder = [&](const Conditions& conditions) {
            fs::remove_all(folder / "Card");
            return run(writeLibrary(folder), mode, folder.createFolder("Card"), conditions,
                       beforeExport);
        };
        const auto expected = outcomeUnder({"plain", 1, noMemory});
        const auto actual = outcomeUnder(GetParam());
        EXPECT_THAT(differences(expected.tree, actual.tree), testing::IsEmpty());
        EXPECT_EQ(expected.document, actual.document);
        EXPECT_EQ(expected.summary, actual.summary);
        EXPECT_EQ(expected.failure, actual.failure);
        return expected;
    }

    TemporaryFolder folder;
};

TEST_P(RunInvariance, writesTheSameLoops) {
    const auto outcome = compared(writeLoops, GenerationMode::loops);
    ASSERT_TRUE(outcome.summary);
    EXPECT_EQ(outcome.summary->banksWritten, 9);
    EXPECT_GT(outcome.summary->convertedFiles, 0);
    EXPECT_GT(outcome.summary->copiedFiles, 0);
}

TEST_P(RunInvariance, writesTheSameDrums) {
    const auto outcome = compared(writeSmallLibrary, GenerationMode::drums);
    ASSERT_TRUE(outcome.summary);
    EXPECT_EQ(outcome.summary->copiedFiles + outcome.summary->convertedFiles, 9 * 8 * 2);
}

/// The distinct samples to convert, in the order of their use in the banks.
std::vector<SampleCandidate> convertedInOrder(const std::vector<BankRecipe>& recipes) {
    std::vector<SampleCandidate> found;
    std::set<std::string> seen;
    for (const auto& recipe : recipes) {
        for (const auto& [channel, sample] : recipe.channels) {
            if (std::holds_alternative<RequiresConversion>(sample.compatibility) &&
                seen.insert(sample.sourceURL.absoluteString()).second)
                found.push_back(sample);
        }
    }
    return found;
}

TEST_P(RunInvariance, reportsTheFirstFailingSampleInBankAndChannelOrder) {
    // Several samples are missing; the later ones fail at once while other threads still convert
    // the earlier ones.
    std::string firstFailing;
    const auto outcome =
        compared(writeLoops, GenerationMode::loops, [&](const std::vector<BankRecipe>& recipes) {
            const auto samples = convertedInOrder(recipes);
            ASSERT_GT(samples.size(), 12U);
            firstFailing = samples[5].sourceURL.lastPathComponent();
            for (std::size_t i = 5; i < samples.size(); ++i)
                fs::remove(samples[i].sourceURL.path());
        });
    EXPECT_FALSE(outcome.summary);
    EXPECT_THAT(outcome.failure,
                testing::StartsWith("Unable to open source audio file " + firstFailing + "."));
}

INSTANTIATE_TEST_SUITE_P(UnderAllConditions, RunInvariance, ValuesIn(allConditions),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace torvo::test
