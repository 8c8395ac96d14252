#include "FileKinds.h"
#include "ForwardingFileManager.h"
#include "Platform/FileOperations.h"
#include "RecordingFileManager.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <new>
#include <string>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ReadFile, readsTheWholeFile) {
    const FileKinds kinds;
    EXPECT_EQ(readFile(files(), kinds.file), bytes("12345"));
    EXPECT_THAT(readFile(files(), kinds.folder.write("empty", "")), IsEmpty());
    const auto error = thrown<FileError>([&] { readFile(files(), kinds.directory); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), std::errc::is_a_directory);
}

TEST(WriteFileAtomically, replacesTheFileWithoutLeftovers) {
    const TemporaryFolder folder;
    const auto longest = folder / std::string(255, 'x');
    writeFileAtomically(files(), longest, bytes("one"));
    EXPECT_EQ(fs::status(longest).permissions(), ordinaryFilePermissions());
    fs::permissions(longest, fs::perms(0600));
    writeFileAtomically(files(), longest, bytes("two"), fs::perms(0604));
    EXPECT_EQ(textOf(longest), "two");
    EXPECT_EQ(fs::status(longest).permissions(), fs::perms(0604));
    writeFileAtomically(files(), longest, bytes(""));
    EXPECT_EQ(textOf(longest), "");
    EXPECT_EQ(files().contentsOfDirectory(folder.path()).size(), 1U);
}

TEST(WriteFileAtomically, namesTheTargetOnFailureWithoutLeftovers) {
    const TemporaryFolder folder;
    const auto inTheWay = folder.createFolder("folder");
    const auto error =
        thrown<FileError>([&] { writeFileAtomically(files(), inTheWay, bytes("x")); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->errorDescription(),
              "Unable to write " + inTheWay.string() + ": Is a directory.");
    EXPECT_EQ(files().contentsOfDirectory(folder.path()).size(), 1U);

    const auto missing = thrown<FileError>(
        [&] { writeFileAtomically(files(), folder / "missing/file", bytes("x")); });
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->path(), folder / "missing/file");
}

TEST(ResolvingSymlinks, followsLinksAsFarAsThePathExists) {
    const FileKinds kinds;
    const auto& folder = kinds.folder;
    fs::create_directory_symlink("directory", folder / "relative");
    folder.createFolder("other/deep");
    fs::create_directory_symlink(folder / "other/deep", folder / "deep");
    struct Row {
        const char* path;
        const char* expected;
    };
    const Row rows[] = {
        {"file link", "file"},
        {"directory link/x", "directory/x"},
        {"relative/x/../y", "directory/y"},
        {"deep/../z", "other/z"}, // the parent of the link's target, not of the link
        {"missing/x/./y", "missing/x/y"},
        {"missing/../file link", "file link"},
        {"dead link", "dead link"},
        {"dead link/x", "dead link/x"},
        {"circular link/x", "circular link/x"},
        {"file/x", "file/x"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(resolvingSymlinks(files(), FileURL(folder / row.path)),
                  FileURL(folder / row.expected))
            << row.path;
    }
    EXPECT_EQ(resolvingSymlinks(files(), FileURL()), FileURL());
    EXPECT_EQ(resolvingSymlinks(files(), FileURL::directory(kinds.directoryLink)),
              FileURL::directory(kinds.directory));
}

/// Backdates the modification time of a file.
void age(const fs::path& path, std::chrono::seconds by) {
    fs::last_write_time(path, fs::last_write_time(path) - by);
}

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : files().contentsOfDirectory(folder))
        names.push_back(entry.name);
    return names;
}

constexpr auto oneDay = std::chrono::hours(24);
const std::string temporary = ".torvo-0123456789abcdef.tmp";

TEST(RemoveAbandonedTemporaries, removesItsOwnFilesAndNoOthers) {
    const TemporaryFolder folder;
    const std::vector<std::string> kept{
        ".torvo-0123456789abcde.tmp",  ".torvo-0123456789abcdefa.tmp",
        ".torvo-0123456789ABCDEF.tmp", "xtorvo-0123456789abcdef.tmp",
        ".torvo-0123456789abcdef.wav", ".torvo-1111111111111111.tmp"};
    for (const auto& name : kept) {
        if (name == kept.back())
            folder.createFolder(name); // a folder with a matching name
        else
            folder.write(name, "");
        age(folder / name, 2 * oneDay);
    }
    for (const auto& name : {temporary, std::string(".torvo-ffffffffffffffff.tmp")})
        age(folder.write(name, ""), 2 * oneDay);
    removeAbandonedTemporaries(files(), folder.path());
    EXPECT_THAT(namesIn(folder.path()), testing::UnorderedElementsAreArray(kept));
    // A folder that cannot be listed is not an error.
    removeAbandonedTemporaries(files(), folder / "missing");
}

TEST(RemoveAbandonedTemporaries, keepsFilesModifiedWithinADay) {
    // This process, another one or another machine may still be writing it.
    struct Row {
        std::chrono::seconds age;
        bool isLeft;
    };
    using namespace std::chrono_literals;
    for (const auto& row : {Row{0s, true}, Row{oneDay - 60s, true}, Row{oneDay + 60s, false}}) {
        const TemporaryFolder folder;
        age(folder.write(temporary, ""), row.age);
        removeAbandonedTemporaries(files(), folder.path());
        EXPECT_EQ(namesIn(folder.path()).size(), row.isLeft ? 1U : 0U) << row.age.count();
    }
}

/// A file system whose clock differs from the local one, as on a file server.
class ShiftedClock final : public ForwardingFileManager {
public:
    explicit ShiftedClock(std::chrono::seconds by) : by_(by) {}

    std::optional<FileStatus> linkStatus(const fs::path& path) const override {
        auto status = ForwardingFileManager::linkStatus(path);
        if (status)
            status->modified += by_;
        return status;
    }

private:
    std::chrono::seconds by_;
};

TEST(RemoveAbandonedTemporaries, usesTheClockOfTheFileSystem) {
    for (const auto shift : {-400 * oneDay, 400 * oneDay}) {
        const TemporaryFolder folder;
        const std::string young = ".torvo-1111111111111111.tmp";
        folder.write(young, "");
        age(folder.write(temporary, ""), 2 * oneDay);
        removeAbandonedTemporaries(ShiftedClock(shift), folder.path());
        EXPECT_THAT(namesIn(folder.path()), ElementsAre(young));
    }
}

TEST(RemoveAbandonedTemporaries, keepsAllFilesWhenTheTimeIsUnknown) {
    const TemporaryFolder folder;
    age(folder.write(temporary, ""), 2 * oneDay);
    removeAbandonedTemporaries(ForwardingFileManager(failing("open createUnique", EROFS)),
                               folder.path());
    EXPECT_THAT(namesIn(folder.path()), ElementsAre(temporary));
}

TEST(WriteFileAtomically, leavesNoTemporaryFileOnBadAlloc) {
    for (const auto* function : {"open createUnique", "linkStatus", "setPermissions", "write",
                                 "flush", "close", "replaceItem"}) {
        const TemporaryFolder folder;
        const auto path = folder.write("file", "old");
        const ForwardingFileManager outOfMemory([=](const FileCall& call) {
            if (call.function == function)
                throw std::bad_alloc();
        });
        EXPECT_THROW(writeFileAtomically(outOfMemory, path, bytes("new"), fs::perms(0604)),
                     std::bad_alloc)
            << function;
        EXPECT_THAT(namesIn(folder.path()), ElementsAre("file")) << function;
        EXPECT_EQ(textOf(path), "old");
    }
}

/// Creates the file, then throws std::bad_alloc.
class ForgetfulFileManager final : public ForwardingFileManager {
public:
    std::unique_ptr<File> open(const fs::path& path, OpenMode mode) const override {
        ForwardingFileManager::open(path, mode);
        throw std::bad_alloc();
    }
};

TEST(WriteFileAtomically, leavesNoTemporaryFileOnBadAllocWhileOpening) {
    const TemporaryFolder folder;
    EXPECT_THROW(writeFileAtomically(ForgetfulFileManager(), folder / "file", bytes("new")),
                 std::bad_alloc);
    EXPECT_THAT(namesIn(folder.path()), IsEmpty());
}

TEST(WriteFileAtomically, changesPermissionsOnlyWhereTheyDiffer) {
    const TemporaryFolder folder;
    const auto log = std::make_shared<FileCallLog>();
    const RecordingFileManager recording(log);
    writeFileAtomically(recording, folder / "file", bytes("x"), ordinaryFilePermissions());
    EXPECT_THAT(log->described(folder.path(), {"setPermissions"}), IsEmpty());
    writeFileAtomically(recording, folder / "file", bytes("x"), fs::perms(0600));
    EXPECT_THAT(log->described(folder.path(), {"setPermissions"}),
                ElementsAre("setPermissions .tmp"));
    EXPECT_EQ(fs::status(folder / "file").permissions(), fs::perms(0600));
}

TEST(WriteFileAtomically, succeedsOnFileSystemsWithoutPermissions) {
    struct Row {
        int errorNumber;
        bool goesOn;
    };
    const Row rows[] = {{EPERM, true},   {EACCES, true}, {ENOTSUP, true}, {ENOSYS, true},
                        {EROFS, false},  {EIO, false},   {ENOSPC, false}, {EDQUOT, false},
                        {ENODEV, false}, {ENOENT, false}};
    for (const auto& row : rows) {
        const TemporaryFolder folder;
        const auto path = folder.write("file", "old");
        const ForwardingFileManager without(failing("setPermissions", row.errorNumber));
        const auto error = thrown<FileError>(
            [&] { writeFileAtomically(without, path, bytes("new"), fs::perms(0604)); });
        EXPECT_EQ(!error, row.goesOn) << row.errorNumber;
        EXPECT_EQ(textOf(path), row.goesOn ? "new" : "old") << row.errorNumber;
        EXPECT_THAT(namesIn(folder.path()), ElementsAre("file"));
    }
}

} // namespace
} // namespace torvo::test
