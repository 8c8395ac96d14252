// The checks before an export changes anything: every sample can be opened, and there is enough
// space.

#include "AudioFixtures.h"
#include "ExportFixture.h"
#include "Models/GenerationError.h"
#include "RecordingFileManager.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::IsEmpty;

/// The real file system with preset answers where the volume decides.
class FakeVolume final : public ForwardingFileManager {
public:
    std::optional<std::uint64_t> available; ///< bytes

    std::optional<std::uint64_t> availableSpace(const fs::path&) const override {
        return available;
    }
};

/// An export that replaces the banks of an earlier one.
struct EarlierBanks : ExportFixture {
    EarlierBanks() {
        job.recipes = {bank(1, {"Old"}), bank(2, {"Old"})};
        run();
        job.recipes = {bank(1, {"New"}), bank(2, {"New"})};
        before = snapshotOf(folder / "card");
    }

    ExportSummary runForReal(std::shared_ptr<const FileManager> fileManager = systemFileManager()) {
        return BankExporter(fileManager, std::make_shared<AVAudioSamplePreparer>(fileManager),
                            TorvoWAVMetadataWriter(fileManager))
            .exportBanks(job);
    }

    void setSample(std::size_t recipe, std::int64_t channel, const fs::path& path,
                   const SampleCompatibility& compatibility) {
        auto& sample = job.recipes[recipe].channels.at(channel);
        sample = sampleAt(path, "New");
        sample.compatibility = compatibility;
    }

    void setCompatibility(const SampleCompatibility& compatibility) {
        for (auto& recipe : job.recipes) {
            for (auto& [channel, sample] : recipe.channels)
                sample.compatibility = compatibility;
        }
    }

    void expectNothingChanged() const {
        EXPECT_THAT(differences(before, snapshotOf(folder / "card")), IsEmpty());
    }

    TreeSnapshot before;
};

TEST(ExportSafety, keepsTheEarlierBanksWhenACopiedSampleIsMissing) {
    EarlierBanks banks;
    const auto gone = banks.folder / "unplugged/kick.wav";
    banks.setSample(1, 8, gone, CompatibleWav{});
    const auto error = thrown<FileError>([&] { banks.runForReal(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->errorDescription(),
              "Unable to read " + gone.string() + ": No such file or directory.");
    banks.expectNothingChanged();
}

TEST(ExportSafety, keepsTheEarlierBanksWhenAConvertedSampleIsMissing) {
    EarlierBanks banks;
    const auto gone = banks.folder / "unplugged/kick.mp3";
    banks.setSample(1, 8, gone, RequiresConversion{"non-WAV source"});
    const auto error = thrown<GenerationError>([&] { banks.runForReal(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(*error, GenerationError::exportFailed(
                          "Unable to open source audio file kick.mp3. (OSStatus -2)"));
    EXPECT_EQ(error->file(), gone);
    banks.expectNothingChanged();
}

TEST(ExportSafety, reportsTheFirstFailureInRunOrder) {
    EarlierBanks banks;
    banks.setSample(0, 7, banks.folder / "second.wav", CompatibleWav{});
    banks.setSample(0, 2, banks.folder / "first.mp3", RequiresConversion{"non-WAV source"});
    banks.setSample(1, 1, banks.folder / "third.wav", CompatibleWav{});
    EXPECT_EQ(
        thrown<GenerationError>([&] { banks.run(); }),
        GenerationError::exportFailed("Unable to open source audio file first.mp3. (OSStatus -2)"));
    banks.expectNothingChanged();
}

TEST(ExportSafety, reportsAMissingChannelOnlyWhenItIsReached) {
    EarlierBanks banks;
    banks.job.recipes[1].channels.erase(3);
    EXPECT_EQ(thrown<GenerationError>([&] { banks.run(); }),
              GenerationError::exportFailed("Missing channel 3 for bank 2"));
    EXPECT_TRUE(fs::exists(banks.inDevice("Bank 1/8/New.wav")));
}

TEST(ExportSafety, doesNotOpenChannelsThatAreNotWritten) {
    EarlierBanks banks;
    banks.job.recipes[0].channels.emplace(9, sampleAt(banks.folder / "gone.wav", "gone"));
    EXPECT_EQ(banks.run().banksWritten, 2);
}

TEST(ExportSafety, skipsTheChecksWithoutEarlierBanks) {
    ExportFixture fixture;
    fixture.job.recipes = {fixture.bank(1, {"New"}), fixture.bank(2, {"New"})};
    fixture.job.recipes[1].channels.at(4) = sampleAt(fixture.folder / "gone.wav", "gone");
    const auto fileManager = std::make_shared<FakeVolume>();
    fileManager->available = 0;
    EXPECT_TRUE(thrown<FileError>([&] { fixture.run(fileManager); }));
    EXPECT_TRUE(fs::exists(fixture.inDevice("Bank 1/8/New.wav")));
    EXPECT_TRUE(fs::exists(fixture.inDevice("Bank 2/3/New.wav")));
}

std::ptrdiff_t openFileCount() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

TEST(ExportSafety, opensEveryFileOnceAndOneAtATime) {
    EarlierBanks banks;
    std::vector<std::string> expected;
    for (int index = 0; index < 8; ++index) {
        const auto name = std::to_string(index) + ".wav";
        const auto path = banks.folder.write("source/" + name, bytesOf(banks.source));
        banks.setSample(0, index + 1, path, CompatibleWav{});
        banks.setSample(1, 8 - index, path, CompatibleWav{});
        expected.push_back("open read source/" + name);
    }
    const auto openBefore = openFileCount();
    std::ptrdiff_t mostOpen = 0;
    const auto log = std::make_shared<FileCallLog>([&](const FileCall& call) {
        mostOpen = std::max(mostOpen, openFileCount() - openBefore);
        if (call.operation == "removeItem")
            throw FileError(FileOperation::remove, call.path, EIO);
    });
    EXPECT_TRUE(thrown<FileError>([&] { banks.run(std::make_shared<RecordingFileManager>(log)); }));
    EXPECT_EQ(log->described(banks.folder.path(), {"open read"}), expected);
    EXPECT_LE(mostOpen, 1);
}

/// An upper bound of the bytes that deleting the tree frees.
std::uint64_t spaceOf(const fs::path& path) {
    struct stat details {};
    EXPECT_EQ(::lstat(path.c_str(), &details), 0);
    auto space = static_cast<std::uint64_t>(std::max<std::int64_t>(
        details.st_size, static_cast<std::int64_t>(details.st_blocks) * 512));
    if (S_ISDIR(details.st_mode)) {
        for (const auto& entry : fs::directory_iterator(path))
            space += spaceOf(entry.path());
    }
    return space;
}

/// Two new banks of one sample of 300,000 bytes: 32 files, 9,600,000 bytes.
struct LargeBanks : EarlierBanks {
    LargeBanks() {
        auto file = riffFile({riffChunk("data", std::vector<std::byte>(size - 20))});
        source = folder.write("source/large.wav", file);
        EXPECT_EQ(fs::file_size(source), size);
        job.recipes = {bank(1, {"New"}), bank(2, {"New"})};
    }

    std::string failure() {
        const auto error = thrown<GenerationError>([&] { run(volume); });
        return error ? error->errorDescription() : "none";
    }

    static constexpr std::uint64_t size = 300'000;
    static constexpr std::uint64_t needed = 32 * size;
    std::shared_ptr<FakeVolume> volume = std::make_shared<FakeVolume>();
};

TEST(ExportSafety, keepsTheEarlierBanksWhenTheVolumeIsFull) {
    LargeBanks banks;
    banks.folder.write("card/Kit/QZT508/Kit.app/.hidden", std::string(100'000, 'x'));
    banks.before = snapshotOf(banks.folder / "card");
    const auto earlier = spaceOf(banks.inDevice(""));
    ASSERT_LT(earlier, 600'000U);
    banks.volume->available = banks.needed - earlier - 1;
    EXPECT_EQ(banks.failure(), "Not enough space for " +
                                   (banks.folder / "card/Kit/QZT508").string() +
                                   ": 10 MB needed, 9 MB free. Nothing was deleted.");
    banks.expectNothingChanged();
    banks.volume->available = banks.needed - earlier;
    EXPECT_EQ(banks.failure(), "none") << "the earlier banks count as free";
}

TEST(ExportSafety, exportsWhenTheAvailableSpaceIsUnknown) {
    LargeBanks banks;
    banks.volume->available = std::nullopt;
    EXPECT_EQ(banks.failure(), "none");
}

TEST(ExportSafety, ignoresConvertedSamplesInTheSpaceEstimate) {
    LargeBanks banks;
    banks.setCompatibility(RequiresConversion{"bit depth 8"});
    banks.volume->available = 0;
    EXPECT_EQ(banks.failure(), "none");
}

TEST(ExportSafety, ignoresDamagedWavFilesInTheSpaceEstimate) {
    LargeBanks banks;
    auto cut = bytesOf(banks.source);
    cut.resize(200'000); // shorter than announced
    banks.folder.write("source/large.wav", cut);
    banks.volume->available = 0;
    EXPECT_EQ(banks.failure(), "Invalid WAV chunk size.") << "the fake preparer copies it";
}

TEST(ExportSafety, doesNotCountTheTargetOfALinkAsFreed) {
    LargeBanks banks;
    fs::rename(banks.inDevice(""), banks.folder / "elsewhere");
    fs::create_directory_symlink(banks.folder / "elsewhere", banks.folder / "card/Kit/QZT508");
    banks.volume->available = banks.needed - 10'000;
    EXPECT_EQ(banks.failure(), "Not enough space for " +
                                   (banks.folder / "card/Kit/QZT508").string() +
                                   ": 10 MB needed, 9 MB free. Nothing was deleted.");
}

TEST(AvailableSpace, isKnownOnlyWhereTheFileSystemReportsIt) {
    EXPECT_EQ(systemFileManager()->availableSpace("/proc"), std::nullopt) << "has no blocks";
    EXPECT_EQ(systemFileManager()->availableSpace("/no/such/folder"), std::nullopt);
    const auto inMemory = systemFileManager()->availableSpace("/dev/shm");
    ASSERT_TRUE(inMemory);
    EXPECT_LE(*inMemory, fs::space("/dev/shm").capacity);
}

} // namespace
} // namespace torvo::test
