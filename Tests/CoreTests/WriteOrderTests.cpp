// The order in which files are written, flushed, closed and renamed: it alone decides what is on a
// card that is removed too early.

#include "BankMappingStore.h"
#include "ForwardingFileManager.h"
#include "RecordingFileManager.h"
#include "TemporaryFolder.h"
#include "Thrown.h"
#include "TorvoMetadata.h"
#include "WavFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace torvo::test {
namespace {

using ::testing::ElementsAre;

/// The calls that change something or wait for the medium; "status" checks the volume.
const std::vector<std::string> writing{"open createUnique",
                                       "open create",
                                       "write",
                                       "copyFrom",
                                       "setPermissions",
                                       "flush",
                                       "close",
                                       "replaceItem",
                                       "removeItem",
                                       "createDirectory",
                                       "flushDirectory",
                                       "flushVolume",
                                       "status"};

/// A file system of which it is known or unknown whether a flush of the volume covers its files.
class KnownFileManager final : public ForwardingFileManager {
public:
    explicit KnownFileManager(bool flushCoversFiles) : flushCoversFiles_(flushCoversFiles) {}

    bool volumeFlushCoversFiles(const std::filesystem::path&) const override {
        return flushCoversFiles_;
    }

private:
    bool flushCoversFiles_;
};

TEST(WriteOrder, flushesStampedFilesTogetherBeforeItRenamesThem) {
    const TemporaryFolder folder;
    folder.write("1/a.wav", smallWav());
    folder.write("2/b.wav", smallWav());
    const auto log = std::make_shared<FileCallLog>();
    const TorvoWAVMetadataWriter writer(
        std::make_shared<RecordingFileManager>(log, std::make_shared<KnownFileManager>(true)));
    EXPECT_EQ(writer.apply({}, folder.url()), 2);
    EXPECT_THAT(log->described(folder.path(), writing),
                ElementsAre("status .", "status 1/a.wav", "status 1", "open createUnique 1/.tmp",
                            "copyFrom 1/.tmp", "close 1/.tmp", "status 2/b.wav", "status 2",
                            "open createUnique 2/.tmp", "copyFrom 2/.tmp", "close 2/.tmp",
                            "flushVolume 1", "replaceItem 1/a.wav", "replaceItem 2/b.wav",
                            "flushVolume .", "status ."));
}

TEST(WriteOrder, flushesEachStampedFileWhereAFlushOfTheVolumeMayMissIt) {
    const TemporaryFolder folder;
    folder.write("1/a.wav", smallWav());
    folder.write("2/b.wav", smallWav());
    const auto log = std::make_shared<FileCallLog>();
    const TorvoWAVMetadataWriter writer(
        std::make_shared<RecordingFileManager>(log, std::make_shared<KnownFileManager>(false)));
    EXPECT_EQ(writer.apply({}, folder.url()), 2);
    EXPECT_THAT(log->described(folder.path(), writing),
                ElementsAre("status .", "status 1/a.wav", "status 1", "open createUnique 1/.tmp",
                            "copyFrom 1/.tmp", "flush 1/.tmp", "close 1/.tmp",
                            "replaceItem 1/a.wav", "status 2/b.wav", "status 2",
                            "open createUnique 2/.tmp", "copyFrom 2/.tmp", "flush 2/.tmp",
                            "close 2/.tmp", "replaceItem 2/b.wav", "flushVolume .", "status ."));
}

TEST(WriteOrder, reportsAFailedCloseOfAStamp) {
    const TemporaryFolder folder;
    const auto path = folder.write("1/a.wav", smallWav());
    const TorvoWAVMetadataWriter writer(
        std::make_shared<const ForwardingFileManager>(failing("close", EDQUOT)));
    const auto error = thrown<FileError>([&] { writer.apply({}, folder.url()); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->path(), path);
    EXPECT_EQ(error->code(), std::errc(EDQUOT));
    EXPECT_EQ(bytesOf(path), smallWav());
}

BankMappingDocument smallDocument() {
    return {.version = 2,
            .sourceFolder = FileURL::directory("/Kit"),
            .generationMode = GenerationMode::drums,
            .naming = BankNameScheme("Kit"),
            .generationTemplate = {"T", {}},
            .recipes = {},
            .exportedAt = {}};
}

/// A file system that cannot open or flush folders.
class FolderlessFileManager final : public ForwardingFileManager {
public:
    bool flushDirectory(const std::filesystem::path&) const override { return false; }
};

TEST(WriteOrder, flushesClosesAndRenamesADocumentThenFlushesTheFolder) {
    for (const bool canFlushFolders : {true, false}) {
        const TemporaryFolder folder;
        const FileURL url(folder.write("Kit001.json", "old"));
        std::filesystem::permissions(url.path(), std::filesystem::perms(0600));
        const auto log = std::make_shared<FileCallLog>();
        const auto recording = canFlushFolders
                                   ? std::make_shared<RecordingFileManager>(log)
                                   : std::make_shared<RecordingFileManager>(
                                         log, std::make_shared<FolderlessFileManager>());
        BankMappingStore(recording).exportDocument(smallDocument(), url);
        std::vector<std::string> expected{"open createUnique .tmp",
                                          "setPermissions .tmp",
                                          "write .tmp",
                                          "flush .tmp",
                                          "close .tmp",
                                          "replaceItem Kit001.json",
                                          "flushDirectory ."};
        if (!canFlushFolders)
            expected.emplace_back("flushVolume Kit001.json");
        EXPECT_EQ(log->described(folder.path(), writing), expected);
    }
}

TEST(WriteOrder, reportsAFailedFlushOrCloseOfASave) {
    for (const auto* function : {"flush", "close", "replaceItem", "flushDirectory"}) {
        const TemporaryFolder folder;
        const FileURL url(folder.write("Kit001.json", "old"));
        const BankMappingStore store(
            std::make_shared<const ForwardingFileManager>(failing(function, EDQUOT)));
        const auto error = thrown<FileError>([&] { store.exportDocument(smallDocument(), url); });
        ASSERT_TRUE(error) << function;
        EXPECT_EQ(error->code(), std::errc(EDQUOT));
        const bool isReplaced = std::string_view(function) == "flushDirectory";
        EXPECT_EQ(textOf(url.path()) == "old", !isReplaced) << function;
        EXPECT_EQ(systemFileManager()->contentsOfDirectory(folder.path()).size(), 1U);
    }
}

} // namespace
} // namespace torvo::test
