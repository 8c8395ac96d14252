// The checks before an export or a stamp changes anything: every sample can be opened, there is
// enough space, and no other program is writing to the same folder.

#include "AudioFixtures.h"
#include "ExportFixture.h"
#include "ForwardingFileManager.h"
#include "Models/GenerationError.h"
#include "RecordingFileManager.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The real file system with preset answers where the volume decides.
class FakeVolume final : public ForwardingFileManager {
public:
    std::optional<std::uint64_t> available; ///< bytes
    int lockError = 0;                      ///< value of `errno`, 0 for a lock that is taken

    std::optional<std::uint64_t> availableSpace(const fs::path&) const override {
        return available;
    }
    std::unique_ptr<FolderLock> lockFolder(const fs::path& folder) const override {
        if (lockError != 0)
            throw FileError(FileOperation::lock, folder, lockError);
        return behind().lockFolder(folder);
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
    const auto failing = std::make_shared<const ForwardingFileManager>([&](const FileCall& call) {
        mostOpen = std::max(mostOpen, openFileCount() - openBefore);
        if (call.function == "removeItem")
            throw FileError(call.operation, call.path, EIO);
    });
    const auto log = std::make_shared<FileCallLog>();
    EXPECT_TRUE(thrown<FileError>(
        [&] { banks.run(std::make_shared<RecordingFileManager>(log, failing)); }));
    EXPECT_EQ(log->described(banks.folder.path(), {"open read"}), expected);
    EXPECT_LE(mostOpen, 2) << "more than one sample and the lock were open";
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
    EXPECT_EQ(systemFileManager()->availableSpace("/proc"), std::nullopt) << "procfs has no blocks";
    EXPECT_EQ(systemFileManager()->availableSpace("/no/such/folder"), std::nullopt);
    const auto inMemory = systemFileManager()->availableSpace("/dev/shm");
    ASSERT_TRUE(inMemory);
    EXPECT_LE(*inMemory, fs::space("/dev/shm").capacity);
}

/// Stands in for another program: flock() locks of two descriptors exclude each other even within
/// one process.
class HeldLock {
public:
    explicit HeldLock(const fs::path& folder)
        : descriptor_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
          isHeld_(::flock(descriptor_, LOCK_EX | LOCK_NB) == 0) {}
    ~HeldLock() { ::close(descriptor_); }
    HeldLock(const HeldLock&) = delete;
    HeldLock& operator=(const HeldLock&) = delete;

    bool isHeld() const { return isHeld_; }

private:
    int descriptor_;
    bool isHeld_;
};

GenerationError anotherProgram(const fs::path& folder) {
    return GenerationError::exportFailed("Another program is writing into " + folder.string() +
                                         ". Nothing was changed.");
}

TEST(WriterLock, anExportIsRefusedWhileAnotherProgramWrites) {
    EarlierBanks banks;
    const auto runFolder = banks.folder / "card/Kit";
    {
        const HeldLock other(runFolder);
        ASSERT_TRUE(other.isHeld());
        EXPECT_EQ(thrown<GenerationError>([&] { banks.run(); }), anotherProgram(runFolder));
        banks.expectNothingChanged();
    }
    EXPECT_EQ(banks.run().banksWritten, 2);
    EXPECT_TRUE(HeldLock(runFolder).isHeld()) << "an export that has ended holds no lock";
}

TEST(WriterLock, aStampIsRefusedWhileAnotherProgramWrites) {
    EarlierBanks banks;
    const auto runFolder = banks.folder / "card/Kit";
    const auto stamp = [&] {
        return TorvoWAVMetadataWriter().apply({}, FileURL::directory(runFolder / "QZT508"));
    };
    {
        const HeldLock other(runFolder);
        EXPECT_EQ(thrown<GenerationError>(stamp), anotherProgram(runFolder));
        banks.expectNothingChanged();
    }
    EXPECT_EQ(stamp(), 32);
    EXPECT_TRUE(HeldLock(runFolder).isHeld());
}

TEST(WriterLock, isHeldFromTheDeletionToTheLastFlush) {
    EarlierBanks banks;
    const auto runFolder = banks.folder / "card/Kit";
    std::vector<std::string> unlocked;
    std::size_t checked = 0;
    const auto fileManager =
        std::make_shared<const ForwardingFileManager>([&](const FileCall& call) {
            if (call.function != "removeItem" && call.function != "flushVolume" &&
                call.function != "copyFrom" && call.function != "replaceItem")
                return;
            ++checked;
            if (HeldLock(runFolder).isHeld())
                unlocked.push_back(call.function);
        });
    banks.runForReal(fileManager);
    EXPECT_GE(checked, 1U + 32U + 1U);
    checked = 0;
    TorvoWAVMetadataWriter(fileManager).apply({}, FileURL::directory(runFolder / "QZT508"));
    EXPECT_GE(checked, 32U + 1U);
    EXPECT_THAT(unlocked, IsEmpty());
}

TEST(WriterLock, onlyALockOfAnotherProgramFailsARun) {
    for (const int error : {ENOLCK, EOPNOTSUPP, ENOSYS, EBADF, EACCES, EINVAL, EIO}) {
        EarlierBanks banks;
        const auto volume = std::make_shared<FakeVolume>();
        volume->lockError = error;
        EXPECT_EQ(banks.run(volume).banksWritten, 2) << error;
        EXPECT_EQ(TorvoWAVMetadataWriter(volume).apply(
                      {}, FileURL::directory(banks.folder / "card/Kit/QZT508")),
                  32)
            << error;
    }
    EarlierBanks banks;
    const auto volume = std::make_shared<FakeVolume>();
    volume->lockError = EWOULDBLOCK;
    EXPECT_EQ(thrown<GenerationError>([&] { banks.run(volume); }),
              anotherProgram(banks.folder / "card/Kit"));
    banks.expectNothingChanged();
}

TEST(WriterLock, aStampLocksTheParentOfTheDeviceFolder) {
    const TemporaryFolder folder;
    folder.createFolder("card/Kit/QZT508/Bank 1/3");
    folder.createFolder("card/Other");
    fs::create_directory_symlink(folder / "card/Kit/QZT508", folder / "link");
    fs::create_directory_symlink(folder / "card/Other", folder / "QZT508");
    const std::vector<std::pair<std::string, std::string>> rows{
        {"card/Kit/QZT508", "card/Kit"},
        {"card/Kit/QZT508/Bank 1/3", "card/Kit"},
        {"link", "card/Kit"},
        {"QZT508", "card/Other"},
        {"card/Kit", "card/Kit"},
        {"card/Other", "card/Other"}};
    for (const auto& [stamped, locked] : rows) {
        const auto log = std::make_shared<FileCallLog>();
        TorvoWAVMetadataWriter(std::make_shared<RecordingFileManager>(log))
            .apply({}, FileURL::directory(folder / stamped));
        EXPECT_THAT(log->described(folder.path(), {"lockFolder"}),
                    ElementsAre("lockFolder " + locked))
            << stamped;
    }
}

TEST(ExportOrder, opensAndWritesEveryFileOnceAndClosesItBeforeTheFlush) {
    ExportFixture fixture;
    fixture.source = fixture.folder.write("source/a.wav", wavFile({44100, 1, 16}, 100));
    const auto log = std::make_shared<FileCallLog>();
    const auto fileManager = std::make_shared<RecordingFileManager>(log);
    fixture.job.recipes = {fixture.bank(1, {"a"}), fixture.bank(2, {"a"})};
    for (auto& [channel, sample] : fixture.job.recipes[1].channels)
        sample.compatibility = RequiresConversion{"any"};
    fixture.runForReal(fileManager);

    std::vector<std::string> expected{"createDirectory .", "lockFolder .", "status .",
                                      "createDirectory QZT508", "createDirectory QZT508/Pool"};
    const auto expect = [&](const std::string& line) { expected.push_back(line); };
    const std::vector<std::string> copying{"open createUnique", "copyFrom", "close"};
    const std::vector<std::string> writing{"open create", "write", "close"};
    for (const std::string number : {"1", "2"}) {
        const auto bank = "QZT508/Bank " + number;
        const auto pool = "QZT508/Pool/Bank 0" + number;
        expect("status ."); // still the same volume
        expect("createDirectory " + bank);
        for (const auto& call : writing)
            expect(call + " " + bank + "/info.txt");
        expect("createDirectory " + pool);
        for (int channel = 1; channel <= 8; ++channel) {
            const auto folder = bank + "/" + std::to_string(channel);
            const auto pooled = channel == 1 ? "a.wav" : "a-00" + std::to_string(channel) + ".wav";
            expect("createDirectory " + folder);
            for (const auto& file : {folder + "/a.wav", pool + "/" + pooled}) {
                for (const auto& call : number == "1" ? copying : writing)
                    expect(call + " " + file);
            }
        }
    }
    expect("flushVolume .");
    expect("status .");
    EXPECT_EQ(log->described(fixture.folder / "card/Kit",
                             {"createDirectory", "lockFolder", "status", "open create",
                              "open createUnique", "write", "copyFrom", "close", "flushVolume",
                              "flush", "replaceItem", "removeItem"}),
              expected);
}

TEST(ExportOrder, reportsAFailedClose) {
    for (const std::string name : {"info.txt", "a.wav"}) {
        ExportFixture fixture;
        fixture.job.recipes = {fixture.bank(1, {"a"})};
        const auto failing =
            std::make_shared<const ForwardingFileManager>([&](const FileCall& call) {
                if (call.function == "close" && call.path.filename() == name)
                    throw FileError(call.operation, call.path, EDQUOT);
            });
        const auto error = thrown<FileError>([&] { fixture.runForReal(failing); });
        ASSERT_TRUE(error) << name;
        EXPECT_EQ(error->path().filename(), name);
        EXPECT_EQ(error->code(), std::errc(EDQUOT));
    }
}

TEST(ExportOrder, reportsACardRemovedAfterTheLastFlush) {
    ExportFixture fixture;
    bool isFlushed = false;
    const auto removed = std::make_shared<const ForwardingFileManager>([&](const FileCall& call) {
        isFlushed = isFlushed || call.function == "flushVolume";
        if (isFlushed && call.function == "status")
            throw FileError(call.operation, call.path, ENODEV);
    });
    EXPECT_TRUE(thrown<FileError>([&] { fixture.run(removed); }));
}

} // namespace
} // namespace torvo::test
