#include "ForwardingFileManager.h"
#include "Platform/FileError.h"
#include "Platform/FileReplacements.h"
#include "RecordingFileManager.h"
#include "TemporaryFolder.h"
#include "Thrown.h"
#include "TorvoMetadata.h"
#include "WavFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

/// A volume whose flush covers its files. Its space can be limited, and a folder can be on another
/// volume.
class Volume final : public ForwardingFileManager {
public:
    std::optional<FileStatus> status(const fs::path& path) const override {
        auto status = ForwardingFileManager::status(path);
        if (status && path.native().find("/other") != std::string::npos)
            ++status->identity.device;
        return status;
    }

    bool volumeFlushCoversFiles(const fs::path& folder) const override {
        return folder.filename() != "unknown";
    }

    std::unique_ptr<File> open(const fs::path& path, OpenMode mode) const override {
        if (mode == OpenMode::createUnique && temporaries(path.parent_path()) >= maxTemporaries)
            throw FileError(FileOperation::write, path, fullError);
        return ForwardingFileManager::open(path, mode);
    }

    static std::size_t temporaries(const fs::path& folder) {
        return static_cast<std::size_t>(std::ranges::count_if(
            fs::directory_iterator(folder), [](const fs::directory_entry& entry) {
                return entry.path().filename().native().starts_with(".torvo-");
            }));
    }

    std::size_t maxTemporaries = 1000; ///< in one folder
    int fullError = ENOSPC;
};

class FileReplacementsTest : public testing::Test {
protected:
    /// Adds a new version of each file, which had "old" as its content.
    void addNew(FileReplacements& replacements, const std::vector<std::string>& names) {
        for (const auto& name : names) {
            const auto path = folder.write(name, "old");
            replacements.add(
                path, [&](File& file) { file.write(0, bytes("new " + name)); }, fs::perms(0640));
        }
    }

    std::vector<std::string> flushesAndRenames() const {
        return log->described(folder.path(), {"flush", "flushVolume", "replaceItem"});
    }

    TemporaryFolder folder;
    std::shared_ptr<Volume> volume = std::make_shared<Volume>();
    std::shared_ptr<FileCallLog> log = std::make_shared<FileCallLog>();
    RecordingFileManager files{log, volume};
};

TEST_F(FileReplacementsTest, putsFilesInPlaceWithOneFlush) {
    FileReplacements replacements(files);
    addNew(replacements, {"a", "b", "c"});
    EXPECT_EQ(textOf(folder / "a"), "old");
    replacements.commit();
    EXPECT_THAT(flushesAndRenames(),
                ElementsAre("flushVolume .", "replaceItem a", "replaceItem b", "replaceItem c"));
    for (const char* name : {"a", "b", "c"}) {
        EXPECT_EQ(textOf(folder / name), std::string("new ") + name);
        EXPECT_EQ(fs::status(folder / name).permissions(), fs::perms(0640));
    }
    EXPECT_EQ(Volume::temporaries(folder.path()), 0U);
}

TEST_F(FileReplacementsTest, commitsWhenThereAreManyFiles) {
    FileReplacements replacements(files);
    for (int index = 0; index < 600; ++index)
        addNew(replacements, {std::to_string(index)});
    replacements.commit();
    const auto calls = flushesAndRenames();
    EXPECT_EQ(std::ranges::count(calls, "flushVolume ."), 3);
    EXPECT_EQ(calls.size(), 603U);
}

TEST_F(FileReplacementsTest, commitsWhenTheFilesAreLarge) {
    FileReplacements replacements(files);
    const auto writeSparse = [](File& file) { file.write((40U << 20U) - 1, bytes("x")); };
    for (const char* name : {"a", "b", "c"})
        replacements.add(folder.write(name, "old"), writeSparse, std::nullopt);
    EXPECT_THAT(flushesAndRenames(),
                ElementsAre("flushVolume .", "replaceItem a", "replaceItem b"));
}

TEST_F(FileReplacementsTest, commitsBeforeTheNextVolume) {
    FileReplacements replacements(files);
    addNew(replacements, {"a", "other/b", "other/c", "d"});
    replacements.commit();
    EXPECT_THAT(flushesAndRenames(),
                ElementsAre("flushVolume .", "replaceItem a", "flushVolume other",
                            "replaceItem other/b", "replaceItem other/c", "flushVolume .",
                            "replaceItem d"));
}

TEST_F(FileReplacementsTest, flushesEachFileWhereAFlushOfTheVolumeMayMissIt) {
    FileReplacements replacements(files);
    addNew(replacements, {"unknown/a", "unknown/b"});
    EXPECT_THAT(flushesAndRenames(), ElementsAre("flush unknown/.tmp", "replaceItem unknown/a",
                                                 "flush unknown/.tmp", "replaceItem unknown/b"));
}

TEST_F(FileReplacementsTest, aNearlyFullVolumeTakesTheFilesOneByOne) {
    for (const int error : {ENOSPC, EDQUOT}) {
        volume->fullError = error;
        volume->maxTemporaries = 2;
        FileReplacements replacements(files);
        addNew(replacements, {"a", "b", "c", "d", "e"});
        replacements.commit();
        for (const char* name : {"a", "b", "c", "d", "e"})
            EXPECT_EQ(textOf(folder / name), std::string("new ") + name);
    }
}

TEST_F(FileReplacementsTest, aFullVolumeIsAnError) {
    FileReplacements replacements(files);
    addNew(replacements, {"a"});
    volume->maxTemporaries = 0;
    const auto error = thrown<FileError>([&] { addNew(replacements, {"b"}); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->path(), folder / "b");
    EXPECT_EQ(error->code(), std::errc::no_space_on_device);
    EXPECT_EQ(textOf(folder / "a"), "new a");
    EXPECT_EQ(textOf(folder / "b"), "old");
}

TEST_F(FileReplacementsTest, aFailedFlushReplacesNothing) {
    const ForwardingFileManager faulty(volume, failing("flushVolume", EIO));
    FileReplacements replacements(faulty);
    addNew(replacements, {"a", "b"});
    EXPECT_TRUE(thrown<FileError>([&] { replacements.commit(); }));
    EXPECT_EQ(textOf(folder / "a"), "old");
    EXPECT_EQ(textOf(folder / "b"), "old");
    EXPECT_EQ(Volume::temporaries(folder.path()), 0U);
    replacements.commit();
    EXPECT_EQ(textOf(folder / "a"), "old");
}

TEST_F(FileReplacementsTest, aFailedRenameKeepsWhatCameBefore) {
    const ForwardingFileManager faulty(volume, [](const FileCall& call) {
        if (call.function == "replaceItem" && call.path.filename() == "b")
            throw FileError(call.operation, call.path, EIO);
    });
    FileReplacements replacements(faulty);
    addNew(replacements, {"a", "b", "c"});
    const auto error = thrown<FileError>([&] { replacements.commit(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->path(), folder / "b");
    EXPECT_EQ(textOf(folder / "a"), "new a");
    EXPECT_EQ(textOf(folder / "b"), "old");
    EXPECT_EQ(textOf(folder / "c"), "old");
    EXPECT_EQ(Volume::temporaries(folder.path()), 0U);
}

TEST_F(FileReplacementsTest, removesWhatIsNotCommitted) {
    {
        FileReplacements replacements(files);
        addNew(replacements, {"a", "b"});
        EXPECT_EQ(Volume::temporaries(folder.path()), 2U);
    }
    EXPECT_EQ(textOf(folder / "a"), "old");
    EXPECT_EQ(Volume::temporaries(folder.path()), 0U);
}

TEST_F(FileReplacementsTest, aFailedStampKeepsTheStampsBeforeIt) {
    for (const char* name : {"1/a.wav", "1/b.wav", "1/d.wav"})
        folder.write(name, smallWav());
    folder.write("1/c.wav", "not a WAV file");
    const TorvoWAVMetadataWriter writer(volume);
    EXPECT_ANY_THROW(writer.apply({}, folder.url()));
    EXPECT_NE(bytesOf(folder / "1/a.wav"), smallWav());
    EXPECT_NE(bytesOf(folder / "1/b.wav"), smallWav());
    EXPECT_EQ(bytesOf(folder / "1/d.wav"), smallWav());
    EXPECT_EQ(Volume::temporaries(folder / "1"), 0U);
}

/// A stamp keeps the channel of an earlier one, so the link must see what its target has become.
TEST_F(FileReplacementsTest, aLinkIsStampedAfterItsTarget) {
    folder.write("1/a.wav", smallWav());
    fs::create_directory(folder / "2");
    fs::create_symlink("../1/a.wav", folder / "2/b.wav");
    EXPECT_EQ(TorvoWAVMetadataWriter(volume).apply({}, folder.url()), 2);
    EXPECT_EQ(bytesOf(folder / "2/b.wav"), bytesOf(folder / "1/a.wav"));
}

} // namespace
} // namespace torvo::test
