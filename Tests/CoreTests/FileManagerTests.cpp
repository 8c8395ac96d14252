#include "FileKinds.h"
#include "ForwardingFileManager.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

/// The error code of the file error, or success.
std::error_code codeOf(const auto& action) {
    const auto error = thrown<FileError>(action);
    return error ? error->code() : std::error_code();
}

TEST(FileManager, reportsTheKindOfAnItem) {
    const FileKinds kinds;
    struct Row {
        fs::path path;
        std::optional<FileKind> itself;
        std::optional<FileKind> followed;
    };
    const Row rows[] = {
        {kinds.file, FileKind::regular, FileKind::regular},
        {kinds.directory, FileKind::directory, FileKind::directory},
        {kinds.pipe, FileKind::other, FileKind::other},
        {"/dev/null", FileKind::other, FileKind::other},
        {kinds.fileLink, FileKind::symbolicLink, FileKind::regular},
        {kinds.directoryLink, FileKind::symbolicLink, FileKind::directory},
        {kinds.deadLink, FileKind::symbolicLink, std::nullopt},
        {kinds.circularLink, FileKind::symbolicLink, std::nullopt},
        {kinds.circularLink / "below", std::nullopt, std::nullopt},
        {kinds.folder / "missing", std::nullopt, std::nullopt},
        {kinds.file / "below a file", std::nullopt, std::nullopt},
    };
    const auto kindOf = [](const std::optional<FileStatus>& status) {
        return status ? std::optional(status->kind) : std::nullopt;
    };
    for (const auto& row : rows) {
        EXPECT_EQ(kindOf(files().linkStatus(row.path)), row.itself) << row.path;
        EXPECT_EQ(kindOf(files().status(row.path)), row.followed) << row.path;
    }
    EXPECT_EQ(codeOf([&] { files().status(kinds.folder / std::string(256, 'x')); }),
              std::errc::filename_too_long);
}

TEST(FileManager, tellsMountPointsFromOtherFolders) {
    const FileKinds kinds;
    fs::create_directory_symlink("/proc", kinds.folder / "mounted");
    EXPECT_TRUE(files().isMountPoint("/proc"));
    EXPECT_TRUE(files().isMountPoint(kinds.folder / "mounted"));
    EXPECT_FALSE(files().isMountPoint("/proc/self"));
    EXPECT_FALSE(files().isMountPoint(kinds.directory));
    EXPECT_EQ(codeOf([&] { files().isMountPoint(kinds.folder / "missing"); }),
              std::errc::no_such_file_or_directory);
}

TEST(FileManager, reportsSizeIdentityAndPermissions) {
    const FileKinds kinds;
    fs::create_hard_link(kinds.file, kinds.folder / "same");
    fs::permissions(kinds.file, fs::perms(0640));
    const auto status = files().status(kinds.file);
    ASSERT_TRUE(status);
    EXPECT_EQ(status->size, 5U);
    EXPECT_EQ(status->permissions, fs::perms(0640));
    EXPECT_EQ(files().status(kinds.fileLink)->identity, status->identity);
    EXPECT_EQ(files().status(kinds.folder / "same")->identity, status->identity);
    EXPECT_NE(files().linkStatus(kinds.fileLink)->identity, status->identity);
    EXPECT_NE(files().status(kinds.directory)->identity, status->identity);
}

TEST(FileManager, resolvesLinksOfExistingItems) {
    const FileKinds kinds;
    EXPECT_EQ(files().resolve(kinds.fileLink), kinds.file);
    EXPECT_EQ(files().resolve(kinds.directoryLink / ".." / "./file"), kinds.file);
    EXPECT_EQ(codeOf([&] { files().resolve(kinds.deadLink); }),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(codeOf([&] { files().resolve(kinds.circularLink); }),
              std::errc::too_many_symbolic_link_levels);
}

TEST(FileManager, listsAFolder) {
    const FileKinds kinds;
    kinds.folder.write("\xFF", "");
    kinds.folder.write(".hidden", "");
    auto entries = files().contentsOfDirectory(kinds.folder.path());
    std::ranges::sort(entries, {}, &DirectoryEntry::name);
    std::vector<std::pair<std::string, FileKind>> found;
    for (const auto& entry : entries)
        found.emplace_back(entry.name, entry.kind);
    EXPECT_THAT(found, ElementsAre(std::pair(".hidden", FileKind::regular),
                                   std::pair("circular link", FileKind::symbolicLink),
                                   std::pair("dead link", FileKind::symbolicLink),
                                   std::pair("directory", FileKind::directory),
                                   std::pair("directory link", FileKind::symbolicLink),
                                   std::pair("file", FileKind::regular),
                                   std::pair("file link", FileKind::symbolicLink),
                                   std::pair("pipe", FileKind::other),
                                   std::pair("\xFF", FileKind::regular)));
    EXPECT_EQ(codeOf([&] { files().contentsOfDirectory(kinds.file); }), std::errc::not_a_directory);
    EXPECT_EQ(codeOf([&] { files().contentsOfDirectory(kinds.folder / "missing"); }),
              std::errc::no_such_file_or_directory);
}

TEST(FileManager, createsFoldersWithParents) {
    const FileKinds kinds;
    files().createDirectory(kinds.folder / "a/b/c");
    kinds.folder.write("a/b/c/kept", "x");
    files().createDirectory(kinds.folder / "a/b/c");
    EXPECT_TRUE(fs::exists(kinds.folder / "a/b/c/kept"));
    files().createDirectory(kinds.directoryLink);
    EXPECT_NE(codeOf([&] { files().createDirectory(kinds.file); }), std::error_code());
    EXPECT_NE(codeOf([&] { files().createDirectory(kinds.file / "x"); }), std::error_code());
}

TEST(FileManager, removesItemsButNeverLinkTargets) {
    const FileKinds kinds;
    kinds.folder.write("directory/a/b", "x");
    fs::create_directory_symlink(kinds.directory, kinds.folder / "directory/a/round");
    for (const auto& path :
         {kinds.fileLink, kinds.directoryLink, kinds.deadLink, kinds.circularLink, kinds.pipe}) {
        files().removeItem(path);
        EXPECT_FALSE(files().linkStatus(path)) << path;
    }
    EXPECT_TRUE(fs::exists(kinds.file));
    EXPECT_TRUE(fs::exists(kinds.directory));
    files().removeItem(kinds.file);
    files().removeItem(kinds.directory);
    EXPECT_THAT(files().contentsOfDirectory(kinds.folder.path()), IsEmpty());
}

void copyFile(const File& source, const fs::path& destination, const FileEdit& edit = {}) {
    const auto copy = files().open(destination, OpenMode::createUnique);
    copy->copyFrom(source, edit);
    copy->close();
}

std::string longText(std::size_t size) {
    std::string text(size, 'a');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>(i * 7 + i / 251);
    return text;
}

/// A file that the kernel cannot copy: the program reads and writes its bytes.
class FileWithoutDescriptor final : public ForwardingFile {
public:
    using ForwardingFile::ForwardingFile;
    std::optional<int> descriptor() const override { return std::nullopt; }
};

TEST(FileManager, copiesToANewFileWithDefaultPermissions) {
    const TemporaryFolder folder;
    const auto content = longText(700'001);
    const auto source = folder.write("source", content);
    fs::permissions(source, fs::perms(0400));
    copyFile(*files().open(source, OpenMode::read), folder / "copy");
    EXPECT_TRUE(textOf(folder / "copy") == content);
    EXPECT_EQ(fs::status(folder / "copy").permissions(), ordinaryFilePermissions());
}

TEST(FileManager, copiesWithAnEdit) {
    struct Row {
        const char* name;
        std::size_t offset;
        std::size_t replacedSize;
        std::size_t insertedSize;
    };
    // Blocks of 256 KiB are copied at a time.
    constexpr std::size_t size = 700'001;
    constexpr std::size_t block = std::size_t{256} * 1024;
    for (const auto& row :
         {Row{"nothing", 0, 0, 0}, Row{"appended", size, 0, 1944},
          Row{"the end replaced", size - 10, 10, 1944},
          Row{"the middle overwritten", 300'000, 1936, 1936},
          Row{"the middle longer", block, 100, 5000},
          Row{"the middle shorter", 2 * block - 1, 5000, 100},
          Row{"the middle removed", 300'000, 5000, 0}, Row{"inserted at the beginning", 0, 0, 7},
          Row{"everything replaced", 0, size, 5}}) {
        const TemporaryFolder folder;
        const auto content = longText(size);
        const auto source = folder.write("source", content);
        const std::string inserted(row.insertedSize, '!');
        const FileEdit edit{row.offset, row.replacedSize, bytes(inserted)};
        auto expected = content;
        expected.replace(row.offset, row.replacedSize, inserted);
        copyFile(*files().open(source, OpenMode::read), folder / "copy", edit);
        EXPECT_TRUE(textOf(folder / "copy") == expected) << row.name;
        copyFile(FileWithoutDescriptor(files().open(source, OpenMode::read)), folder / "read",
                 edit);
        EXPECT_TRUE(textOf(folder / "read") == expected) << row.name << ", without a descriptor";
        EXPECT_TRUE(textOf(source) == content) << row.name;
    }
}

TEST(FileManager, doesNotCopyAFileThatHasBecomeSmaller) {
    const TemporaryFolder folder;
    const auto path = folder.write("source", longText(1000));
    const auto source = files().open(path, OpenMode::read);
    fs::resize_file(path, 500);
    const auto error = thrown<FileError>([&] { copyFile(*source, folder / "copy"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->operation(), FileOperation::read);
    EXPECT_EQ(error->path(), path);
}

/// A new folder on a different volume.
fs::path folderElsewhere(const TemporaryFolder& folder) {
    const auto device = files().status(folder.path())->identity.device;
    for (const fs::path& candidate : {fs::path("/dev/shm"), fs::path("/tmp"), fs::current_path()}) {
        const auto status = files().status(candidate);
        if (status && status->identity.device != device) {
            const auto elsewhere = candidate / folder.path().filename();
            fs::create_directory(elsewhere);
            return elsewhere;
        }
    }
    throw std::runtime_error("no second volume to copy to");
}

TEST(FileManager, copiesAcrossVolumes) {
    // When the kernel cannot copy between the volumes, the program reads and writes the bytes.
    const TemporaryFolder folder;
    const auto elsewhere = folderElsewhere(folder);
    const std::string content(600'000, 'x');
    copyFile(*files().open(folder.write("source", content), OpenMode::read), elsewhere / "copy");
    const bool same = textOf(elsewhere / "copy") == content;
    fs::remove_all(elsewhere);
    EXPECT_TRUE(same);
}

TEST(FileManager, replacesAtomically) {
    const FileKinds kinds;
    const auto source = kinds.folder.write("source", "new");
    files().replaceItem(kinds.file, source);
    EXPECT_EQ(textOf(kinds.file), "new");
    EXPECT_FALSE(fs::exists(source));
    EXPECT_EQ(codeOf([&] { files().replaceItem(kinds.directory, kinds.file); }),
              std::errc::is_a_directory);
    EXPECT_EQ(codeOf([&] { files().replaceItem(kinds.file, kinds.folder / "missing"); }),
              std::errc::no_such_file_or_directory);
}

TEST(FileManager, opensRegularFilesOnly) {
    const FileKinds kinds;
    EXPECT_EQ(codeOf([&] { files().open(kinds.file, OpenMode::read); }), std::error_code());
    EXPECT_EQ(codeOf([&] { files().open(kinds.fileLink, OpenMode::read); }), std::error_code());
    EXPECT_EQ(codeOf([&] { files().open(kinds.directory, OpenMode::read); }),
              std::errc::is_a_directory);
    EXPECT_EQ(codeOf([&] { files().open(kinds.pipe, OpenMode::read); }),
              std::errc::invalid_argument)
        << "opening a pipe must not block";
    EXPECT_EQ(codeOf([&] { files().open("/dev/zero", OpenMode::read); }),
              std::errc::invalid_argument);
    EXPECT_EQ(codeOf([&] { files().open(kinds.deadLink, OpenMode::read); }),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(codeOf([&] { files().open(kinds.file, OpenMode::createUnique); }),
              std::errc::file_exists);
    EXPECT_EQ(codeOf([&] { files().open(kinds.folder / "missing/x", OpenMode::create); }),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(textOf(kinds.file), "12345");
}

TEST(FileManager, readsAndWritesAtOffsets) {
    const TemporaryFolder folder;
    const auto file = files().open(folder / "file", OpenMode::createUnique);
    file->write(0, bytes("12345"));
    std::array<std::byte, 4> four{};
    EXPECT_EQ(file->read(1, four), 4U);
    EXPECT_EQ(four[0], std::byte{'2'});
    EXPECT_EQ(file->read(3, four), 2U) << "fewer at the end";
    EXPECT_EQ(file->read(5, four), 0U);
    EXPECT_EQ(file->read(500, four), 0U);
    EXPECT_EQ(file->size(), 5U);
    file->write(4, bytes("!?"));
    EXPECT_EQ(file->size(), 6U);
    const auto word = bytes("abc");
    file->writeParts(8, std::array<File::Bytes, 4>{word, {}, std::span(word).first(1), {}});
    file->writeParts(100, {});
    EXPECT_EQ(file->size(), 12U);
    file->flush();
    file->close();
    EXPECT_EQ(textOf(folder / "file"), std::string("1234!?\0\0abca", 12));
    EXPECT_EQ(codeOf([&] { files().open(folder / "file", OpenMode::read)->write(0, word); }),
              std::errc::bad_file_descriptor);
}

TEST(FileManager, createsFilesWithDefaultPermissions) {
    const FileKinds kinds;
    files().open(kinds.folder / "new", OpenMode::createUnique)->close();
    EXPECT_EQ(fs::status(kinds.folder / "new").permissions(), ordinaryFilePermissions());
    const auto emptied = files().open(kinds.file, OpenMode::create);
    EXPECT_EQ(emptied->size(), 0U);
    emptied->setPermissions(fs::perms(0600));
    EXPECT_EQ(fs::status(kinds.file).permissions(), fs::perms(0600));
}

TEST(FileManager, failsOnAFullVolume) {
    // /dev/full gives the same error as a full card.
    const auto full = [] {
        const TemporaryFolder folder;
        fs::create_symlink("/dev/full", folder / "file");
        files().open(folder / "file", OpenMode::create)->write(0, bytes("x"));
    };
    EXPECT_EQ(codeOf(full), std::errc::no_space_on_device);
}

TEST(FileManager, readsTheTargetOfALink) {
    const FileKinds kinds;
    fs::create_symlink("../x/./y", kinds.folder / "relative");
    EXPECT_EQ(files().linkTarget(kinds.folder / "relative"), "../x/./y");
    EXPECT_EQ(files().linkTarget(kinds.deadLink), kinds.folder / "missing");
    EXPECT_EQ(codeOf([&] { files().linkTarget(kinds.file); }), std::errc::invalid_argument);
}

TEST(FileManager, flushesAFolder) {
    const FileKinds kinds;
    EXPECT_TRUE(files().flushDirectory(kinds.directory));
    EXPECT_FALSE(files().flushDirectory(kinds.folder / "missing"));
    EXPECT_FALSE(files().flushDirectory(kinds.file));
    EXPECT_FALSE(files().flushDirectory("/proc/self")) << "procfs cannot flush a folder";
}

TEST(FileManager, flushesAVolume) {
    const FileKinds kinds;
    files().flushVolume(kinds.folder.path());
    EXPECT_EQ(codeOf([&] { files().flushVolume(kinds.folder / "missing"); }),
              std::errc::no_such_file_or_directory);
}

} // namespace
} // namespace torvo::test
