#include "BusyPayload.h"
#include "ForwardingFileManager.h"
#include "LockedFolderFileManager.h"
#include "Models/GenerationError.h"
#include "RecordingFileManager.h"
#include "TemporaryFolder.h"
#include "Thrown.h"
#include "TorvoMetadata.h"
#include "WavFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::byte>;

const TorvoMetadataOptions plain;

Bytes stampedWav(unsigned channelIndex) {
    auto file = smallWav();
    append(file,
           riffChunk("busy", freshBusyPayload({.dataSize = 4, .channelIndex = channelIndex})));
    return file;
}

std::int64_t stampFolder(const TemporaryFolder& folder) {
    return TorvoWAVMetadataWriter().apply(plain, folder.url());
}

TEST(TorvoMetadataFolder, takesTheChannelFromTheFolderName) {
    struct Row {
        const char* folder;
        std::optional<std::int64_t> channel;
    };
    const Row rows[] = {
        {"1", 1},
        {"8", 8},
        {"3", 3},
        {"03", 3},
        {"+3", 3},
        {"0008", 8},
        {"0", {}},
        {"9", {}},
        {"09", {}},
        {"10", {}},
        {"-3", {}},
        {"-0", {}},
        {"+-3", {}},
        {"++3", {}},
        {"3abc", {}},
        {" 3", {}},
        {"3 ", {}},
        {"3.0", {}},
        {"0x3", {}},
        {"３", {}},
        {"８", {}},
        {"٣", {}},
        {"Bank 3", {}},
        {"+", {}},
        {"18446744073709551617", {}},
        {"99999999999999999999999", {}},
        {"3e0", {}},
        {"\xFF", {}},
    };
    for (const auto& row : rows) {
        const auto url =
            FileURL("/card").appendingPathComponent(row.folder).appendingPathComponent("a.wav");
        EXPECT_EQ(channelNumber(url), row.channel) << "\"" << row.folder << "\"";
    }
    EXPECT_EQ(channelNumber(FileURL("/a.wav")), std::nullopt);
}

TEST(TorvoMetadataFolder, stampsEveryVisibleWavWithItsChannel) {
    const TemporaryFolder folder;
    const auto inThree = folder.write("Bank 1/3/Kick.wav", smallWav());
    const auto inNine = folder.write("Bank 1/09/Kick.wav", smallWav());
    const auto inPool = folder.write("Pool/Bank 01/KICK.WAV", smallWav());
    const auto mixed = folder.write("Bank 1/8/a.b.Wav", smallWav());
    const std::vector<fs::path> untouched{
        folder.write("Bank 1/3/.hidden.wav", smallWav()),
        folder.write(".hidden/3/Kick.wav", smallWav()),
        folder.write("Bank 1/.trash/Kick.wav", smallWav()),
        folder.write("Bank 1/3/Kick.wave", smallWav()),
        folder.write("Bank 1/3/Kick", smallWav()),
        folder.write("Bank 1/3/wav", smallWav()),
        folder.write("Bank 1/3/Kick.aif", smallWav()),
        folder.write("Bank 1/info.txt", smallWav()),
    };
    EXPECT_EQ(stampFolder(folder), 4);
    EXPECT_EQ(bytesOf(inThree), stampedWav(2));
    EXPECT_EQ(bytesOf(inNine), stampedWav(0)) << "9 is no channel of the device";
    EXPECT_EQ(bytesOf(inPool), stampedWav(0));
    EXPECT_EQ(bytesOf(mixed), stampedWav(7));
    for (const auto& path : untouched)
        EXPECT_EQ(bytesOf(path), smallWav()) << path;
    EXPECT_EQ(stampFolder(folder), 4) << "no other file has appeared";
}

TEST(TorvoMetadataFolder, entersFoldersThatLookLikeFilesAndPackages) {
    const TemporaryFolder folder;
    const auto inWavFolder = folder.write("loops.wav/2/a.wav", smallWav());
    const auto inPackage = folder.write("Kit.bundle/4/a.wav", smallWav());
    EXPECT_EQ(stampFolder(folder), 2);
    EXPECT_EQ(bytesOf(inWavFolder), stampedWav(1));
    EXPECT_EQ(bytesOf(inPackage), stampedWav(3));
}

TEST(TorvoMetadataFolder, treatsAnUnreadableRootAsEmpty) {
    const TemporaryFolder folder;
    const TorvoWAVMetadataWriter writer;
    EXPECT_EQ(writer.apply(plain, FileURL::directory(folder / "missing")), 0);
    EXPECT_EQ(writer.apply(plain, FileURL(folder.write("a.wav", smallWav()))), 0);
    EXPECT_EQ(bytesOf(folder / "a.wav"), smallWav());
    const TemporaryFolder empty;
    EXPECT_EQ(stampFolder(empty), 0);
    const auto locked = std::make_shared<LockedFolderFileManager>(folder.path());
    EXPECT_EQ(TorvoWAVMetadataWriter(locked).apply(plain, folder.url()), 0);
}

TEST(TorvoMetadataFolder, failsOnALockedSubfolder) {
    // The count shown to the user must not hide skipped files.
    const TemporaryFolder folder;
    folder.write("1/a.wav", smallWav());
    folder.write("2/a.wav", smallWav());
    const auto locked = std::make_shared<LockedFolderFileManager>(folder / "1");
    const auto error =
        thrown<FileError>([&] { TorvoWAVMetadataWriter(locked).apply(plain, folder.url()); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->path(), folder / "1");
    EXPECT_EQ(bytesOf(folder / "2/a.wav"), smallWav()) << "the list is made before the first write";
}

TEST(TorvoMetadataFolder, stopsAtTheFirstFailureAndKeepsWrittenFiles) {
    const TemporaryFolder folder;
    folder.write("1/a.wav", smallWav());
    folder.write("2/b.wav", "no audio");
    folder.write("3/c.wav", smallWav());
    EXPECT_EQ(thrown<GenerationError>([&] { stampFolder(folder); }),
              GenerationError::exportFailed("Not a RIFF/WAVE file."));
    EXPECT_EQ(bytesOf(folder / "1/a.wav"), stampedWav(0));
    EXPECT_EQ(textOf(folder / "2/b.wav"), "no audio");
    EXPECT_EQ(bytesOf(folder / "3/c.wav"), smallWav());
}

TEST(TorvoMetadataFolder, replacesALinkAndNotItsTarget) {
    const TemporaryFolder outside;
    const auto target = outside.write("target.wav", smallWav());
    const TemporaryFolder folder;
    folder.createFolder("5");
    fs::create_symlink(target, folder / "5/link.wav");
    fs::create_symlink(outside.path(), folder / "linked folder");
    fs::create_symlink(outside.path(), folder / "folder.wav");
    fs::create_symlink(outside / "missing", folder / "dead.wav");
    fs::create_symlink(folder / "loop.wav", folder / "loop.wav");
    EXPECT_EQ(stampFolder(folder), 1);
    EXPECT_EQ(bytesOf(target), smallWav());
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "5/link.wav")));
    EXPECT_EQ(bytesOf(folder / "5/link.wav"), stampedWav(4));
}

TEST(TorvoMetadataFolder, skipsPipesAndSockets) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe.wav").c_str(), 0600), 0);
    EXPECT_EQ(stampFolder(folder), 0);
}

TEST(TorvoMetadataFolder, keepsThePermissionsOfAFile) {
    const TemporaryFolder folder;
    const auto path = folder.write("1/a.wav", smallWav());
    fs::permissions(path, fs::perms(0640));
    TorvoWAVMetadataWriter().apply(plain, FileURL(path), 1);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
    EXPECT_EQ(bytesOf(path), stampedWav(0));
}

TEST(TorvoMetadataFolder, stampsWhenPermissionsCannotBeSet) {
    const TemporaryFolder folder;
    const auto path = folder.write("1/a.wav", smallWav());
    fs::permissions(path, fs::perms(0640));
    folder.write("2/b.wav", smallWav());
    const auto log = std::make_shared<FileCallLog>();
    const TorvoWAVMetadataWriter writer(std::make_shared<RecordingFileManager>(
        log, std::make_shared<const ForwardingFileManager>(failing("setPermissions", EPERM))));
    EXPECT_EQ(writer.apply(plain, folder.url()), 2);
    EXPECT_EQ(bytesOf(path), stampedWav(0));
    EXPECT_EQ(log->described(folder.path(), {"setPermissions"}).size(), 1U)
        << "only for the file whose permissions differ";
}

TEST(TorvoMetadataFolder, stampsALargeFileInBlocks) {
    Bytes samples(5'000'001);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::byte>(i * 7 + i / 251);
    const Bytes longTail = riffChunk("list", samples);
    struct Row {
        const char* name;
        Bytes file;
    };
    const Row rows[] = {
        {"without a stamp", riffFile({riffChunk("data", samples)})},
        {"a stamp of another length in front",
         riffFile({riffChunk("busy", bytes("12345")), riffChunk("data", samples)})},
        {"a full stamp in the middle",
         riffFile({riffChunk("data", samples), riffChunk("busy", Bytes(1936)), longTail})},
    };
    for (const auto& row : rows) {
        const TemporaryFolder folder;
        const auto path = folder.write("3/a.wav", row.file);
        std::size_t maxSize = 0; // of a single read or write
        const TorvoWAVMetadataWriter writer(std::make_shared<const ForwardingFileManager>(
            [&](const FileCall& call) { maxSize = std::max(maxSize, call.size); }));
        EXPECT_EQ(writer.apply(plain, folder.url()), 1) << row.name;
        auto expected = row.file;
        writer.updateBusyChunk(expected, plain, 3);
        EXPECT_TRUE(bytesOf(path) == expected) << row.name;
        EXPECT_GT(maxSize, 0U) << row.name;
        EXPECT_LE(maxSize, std::size_t{1} << 20U) << row.name;
    }
}

TEST(TorvoMetadataFolder, leavesAFileThatShrinksMeanwhileUnchanged) {
    const TemporaryFolder folder;
    const auto path = folder.write("3/a.wav", riffFile({riffChunk("data", Bytes(3'000'000))}));
    const TorvoWAVMetadataWriter writer(
        std::make_shared<const ForwardingFileManager>([&](const FileCall& call) {
            if (call.function == "open createUnique")
                fs::resize_file(path, 2'000'000);
        }));
    const auto error = thrown<FileError>([&] { writer.apply(plain, FileURL(path), 3); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->operation(), FileOperation::read);
    EXPECT_EQ(error->path(), path);
    EXPECT_EQ(fs::file_size(path), 2'000'000U);
    EXPECT_EQ(std::distance(fs::directory_iterator(path.parent_path()), {}), 1);
}

TEST(TorvoMetadataFolder, removesTemporaryFilesOfAnEarlierStamp) {
    const auto leaveBehind = [](const TemporaryFolder& folder, const std::string& relative) {
        const auto path = folder.write(relative, "part");
        fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(48));
        return path;
    };
    const TemporaryFolder folder;
    const auto file = folder.write("Bank 1/3/a.wav", smallWav());
    std::vector<fs::path> left;
    for (const auto* where : {"", "Bank 1/", "Bank 1/3/", "empty/"})
        left.push_back(leaveBehind(folder, std::string(where) + ".torvo-0123456789abcdef.tmp"));
    EXPECT_EQ(stampFolder(folder), 1);
    for (const auto& path : left)
        EXPECT_FALSE(fs::exists(path)) << path;

    const auto beside = leaveBehind(folder, "Bank 1/3/.torvo-0123456789abcdef.tmp");
    TorvoWAVMetadataWriter().apply(plain, FileURL(file), 3);
    EXPECT_FALSE(fs::exists(beside)) << "stamping a single file removes it, too";
}

TEST(TorvoMetadataFolder, keepsTheOldContentOfAHardLinkElsewhere) {
    // The file is replaced, not rewritten.
    const TemporaryFolder folder;
    const auto path = folder.write("1/a.wav", smallWav());
    fs::create_hard_link(path, folder / "same.bin");
    EXPECT_EQ(stampFolder(folder), 1);
    EXPECT_EQ(bytesOf(path), stampedWav(0));
    EXPECT_EQ(bytesOf(folder / "same.bin"), smallWav());
}

TEST(TorvoMetadataFolder, stampsFilesWithNamesOfAnyBytes) {
    const TemporaryFolder folder;
    const std::vector<std::string> names{"\xFF\xFE.wav",    "#?%20\"'.wav",
                                         " blank .wav",     "ドラム.wav",
                                         "line\nbreak.wav", std::string(251, 'x') + ".wav"};
    for (const auto& name : names)
        folder.write("2/" + name, smallWav());
    EXPECT_EQ(stampFolder(folder), static_cast<std::int64_t>(names.size()));
    for (const auto& name : names)
        EXPECT_EQ(bytesOf(folder / ("2/" + name)), stampedWav(1)) << name;
}

TEST(TorvoMetadataFolder, propagatesFileErrors) {
    const TemporaryFolder folder;
    const auto path = folder.write("1/a.wav", smallWav());
    const TorvoWAVMetadataWriter writer;
    const auto missing =
        thrown<FileError>([&] { writer.apply(plain, FileURL(folder / "missing.wav"), 1); });
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->code(), std::errc::no_such_file_or_directory);
    const auto locked = std::make_shared<LockedFolderFileManager>(folder / "1");
    const auto denied =
        thrown<FileError>([&] { TorvoWAVMetadataWriter(locked).apply(plain, FileURL(path), 1); });
    ASSERT_TRUE(denied);
    EXPECT_EQ(denied->code(), std::errc::permission_denied);
    EXPECT_EQ(bytesOf(path), smallWav());
}

} // namespace
} // namespace torvo::test
