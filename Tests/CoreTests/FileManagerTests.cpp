#include "FileKinds.h"
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
    const Zoo zoo;
    struct Row {
        fs::path path;
        std::optional<FileKind> itself;
        std::optional<FileKind> followed;
    };
    const Row rows[] = {
        {zoo.file, FileKind::regular, FileKind::regular},
        {zoo.directory, FileKind::directory, FileKind::directory},
        {zoo.pipe, FileKind::other, FileKind::other},
        {"/dev/null", FileKind::other, FileKind::other},
        {zoo.fileLink, FileKind::symbolicLink, FileKind::regular},
        {zoo.directoryLink, FileKind::symbolicLink, FileKind::directory},
        {zoo.deadLink, FileKind::symbolicLink, std::nullopt},
        {zoo.circularLink, FileKind::symbolicLink, std::nullopt},
        {zoo.circularLink / "below", std::nullopt, std::nullopt},
        {zoo.folder / "missing", std::nullopt, std::nullopt},
        {zoo.file / "below a file", std::nullopt, std::nullopt},
    };
    const auto kindOf = [](const std::optional<FileStatus>& status) {
        return status ? std::optional(status->kind) : std::nullopt;
    };
    for (const auto& row : rows) {
        EXPECT_EQ(kindOf(files().linkStatus(row.path)), row.itself) << row.path;
        EXPECT_EQ(kindOf(files().status(row.path)), row.followed) << row.path;
    }
    EXPECT_EQ(codeOf([&] { files().status(zoo.folder / std::string(256, 'x')); }),
              std::errc::filename_too_long);
}

TEST(FileManager, reportsSizeIdentityAndPermissions) {
    const Zoo zoo;
    fs::create_hard_link(zoo.file, zoo.folder / "same");
    fs::permissions(zoo.file, fs::perms(0640));
    const auto status = files().status(zoo.file);
    ASSERT_TRUE(status);
    EXPECT_EQ(status->size, 5U);
    EXPECT_EQ(status->permissions, fs::perms(0640));
    EXPECT_EQ(files().status(zoo.fileLink)->identity, status->identity);
    EXPECT_EQ(files().status(zoo.folder / "same")->identity, status->identity);
    EXPECT_NE(files().linkStatus(zoo.fileLink)->identity, status->identity);
    EXPECT_NE(files().status(zoo.directory)->identity, status->identity);
}

TEST(FileManager, resolvesLinksOfExistingItems) {
    const Zoo zoo;
    EXPECT_EQ(files().resolve(zoo.fileLink), zoo.file);
    EXPECT_EQ(files().resolve(zoo.directoryLink / ".." / "./file"), zoo.file);
    EXPECT_EQ(codeOf([&] { files().resolve(zoo.deadLink); }), std::errc::no_such_file_or_directory);
    EXPECT_EQ(codeOf([&] { files().resolve(zoo.circularLink); }),
              std::errc::too_many_symbolic_link_levels);
}

TEST(FileManager, listsAFolder) {
    const Zoo zoo;
    zoo.folder.write("\xFF", "");
    zoo.folder.write(".hidden", "");
    auto entries = files().contentsOfDirectory(zoo.folder.path());
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
    EXPECT_EQ(codeOf([&] { files().contentsOfDirectory(zoo.file); }), std::errc::not_a_directory);
    EXPECT_EQ(codeOf([&] { files().contentsOfDirectory(zoo.folder / "missing"); }),
              std::errc::no_such_file_or_directory);
}

TEST(FileManager, createsFoldersWithParents) {
    const Zoo zoo;
    files().createDirectory(zoo.folder / "a/b/c");
    zoo.folder.write("a/b/c/kept", "x");
    files().createDirectory(zoo.folder / "a/b/c");
    EXPECT_TRUE(fs::exists(zoo.folder / "a/b/c/kept"));
    files().createDirectory(zoo.directoryLink);
    EXPECT_NE(codeOf([&] { files().createDirectory(zoo.file); }), std::error_code());
    EXPECT_NE(codeOf([&] { files().createDirectory(zoo.file / "x"); }), std::error_code());
}

TEST(FileManager, removesItemsButNeverLinkTargets) {
    const Zoo zoo;
    zoo.folder.write("directory/a/b", "x");
    fs::create_directory_symlink(zoo.directory, zoo.folder / "directory/a/round");
    for (const auto& path :
         {zoo.fileLink, zoo.directoryLink, zoo.deadLink, zoo.circularLink, zoo.pipe}) {
        files().removeItem(path);
        EXPECT_FALSE(files().linkStatus(path)) << path;
    }
    EXPECT_TRUE(fs::exists(zoo.file));
    EXPECT_TRUE(fs::exists(zoo.directory));
    files().removeItem(zoo.file);
    files().removeItem(zoo.directory);
    EXPECT_THAT(files().contentsOfDirectory(zoo.folder.path()), IsEmpty());
}

TEST(FileManager, copiesToANewFileWithDefaultPermissions) {
    const Zoo zoo;
    std::string content(700'001, 'a');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 7 + i / 251);
    const auto source = zoo.folder.write("source", content);
    fs::permissions(source, fs::perms(0400));
    files().copyItem(source, zoo.folder / "copy");
    EXPECT_TRUE(textOf(zoo.folder / "copy") == content);
    EXPECT_EQ(fs::status(zoo.folder / "copy").permissions(), ordinaryFilePermissions());
    files().copyItem(zoo.fileLink, zoo.folder / "copy of link");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(zoo.folder / "copy of link")));
    EXPECT_EQ(textOf(zoo.folder / "copy of link"), "12345");

    EXPECT_EQ(codeOf([&] { files().copyItem(zoo.file, source); }), std::errc::file_exists);
    EXPECT_EQ(codeOf([&] { files().copyItem(zoo.directory, zoo.folder / "x"); }),
              std::errc::is_a_directory);
    EXPECT_EQ(codeOf([&] { files().copyItem(zoo.pipe, zoo.folder / "x"); }),
              std::errc::invalid_argument)
        << "a pipe is not waited for";
    EXPECT_EQ(codeOf([&] { files().copyItem(zoo.file, zoo.folder / "missing/x"); }),
              std::errc::no_such_file_or_directory);
    EXPECT_FALSE(fs::exists(zoo.folder / "x"));
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
    files().copyItem(folder.write("source", content), elsewhere / "copy");
    const bool same = textOf(elsewhere / "copy") == content;
    fs::remove_all(elsewhere);
    EXPECT_TRUE(same);
}

TEST(FileManager, replacesAtomically) {
    const Zoo zoo;
    const auto source = zoo.folder.write("source", "new");
    files().replaceItem(zoo.file, source);
    EXPECT_EQ(textOf(zoo.file), "new");
    EXPECT_FALSE(fs::exists(source));
    EXPECT_EQ(codeOf([&] { files().replaceItem(zoo.directory, zoo.file); }),
              std::errc::is_a_directory);
    EXPECT_EQ(codeOf([&] { files().replaceItem(zoo.file, zoo.folder / "missing"); }),
              std::errc::no_such_file_or_directory);
}

TEST(FileManager, opensRegularFilesOnly) {
    const Zoo zoo;
    for (const auto mode : {OpenMode::read, OpenMode::update}) {
        EXPECT_EQ(codeOf([&] { files().open(zoo.file, mode); }), std::error_code());
        EXPECT_EQ(codeOf([&] { files().open(zoo.fileLink, mode); }), std::error_code());
        EXPECT_EQ(codeOf([&] { files().open(zoo.directory, mode); }), std::errc::is_a_directory);
        EXPECT_EQ(codeOf([&] { files().open(zoo.pipe, mode); }), std::errc::invalid_argument);
        EXPECT_EQ(codeOf([&] { files().open("/dev/zero", mode); }), std::errc::invalid_argument);
        EXPECT_EQ(codeOf([&] { files().open(zoo.deadLink, mode); }),
                  std::errc::no_such_file_or_directory);
    }
    EXPECT_EQ(codeOf([&] { files().open(zoo.file, OpenMode::createUnique); }),
              std::errc::file_exists);
    EXPECT_EQ(codeOf([&] { files().open(zoo.folder / "missing/x", OpenMode::create); }),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(textOf(zoo.file), "12345");
}

TEST(FileManager, readsAndWritesAtOffsets) {
    const Zoo zoo;
    const auto file = files().open(zoo.file, OpenMode::update);
    std::array<std::byte, 4> four{};
    EXPECT_EQ(file->read(1, four), 4U);
    EXPECT_EQ(four[0], std::byte{'2'});
    EXPECT_EQ(file->read(3, four), 2U) << "fewer at the end";
    EXPECT_EQ(file->read(5, four), 0U);
    EXPECT_EQ(file->read(500, four), 0U);
    EXPECT_EQ(file->size(), 5U);
    file->write(4, bytes("!?"));
    EXPECT_EQ(file->size(), 6U);
    file->resize(3);
    EXPECT_EQ(file->size(), 3U);
    file->write(5, bytes("x"));
    file->flush();
    file->close();
    EXPECT_EQ(textOf(zoo.file), std::string("123\0\0x", 6));
    EXPECT_EQ(codeOf([&] { files().open(zoo.file, OpenMode::read)->write(0, bytes("x")); }),
              std::errc::bad_file_descriptor);
    EXPECT_NE(codeOf([&] { files().open(zoo.file, OpenMode::read)->resize(0); }),
              std::error_code());
}

TEST(FileManager, createsFilesWithDefaultPermissions) {
    const Zoo zoo;
    files().open(zoo.folder / "new", OpenMode::createUnique)->close();
    EXPECT_EQ(fs::status(zoo.folder / "new").permissions(), ordinaryFilePermissions());
    const auto emptied = files().open(zoo.file, OpenMode::create);
    EXPECT_EQ(emptied->size(), 0U);
    emptied->setPermissions(fs::perms(0600));
    EXPECT_EQ(fs::status(zoo.file).permissions(), fs::perms(0600));
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
    const Zoo zoo;
    fs::create_symlink("../x/./y", zoo.folder / "relative");
    EXPECT_EQ(files().linkTarget(zoo.folder / "relative"), "../x/./y");
    EXPECT_EQ(files().linkTarget(zoo.deadLink), zoo.folder / "missing");
    EXPECT_EQ(codeOf([&] { files().linkTarget(zoo.file); }), std::errc::invalid_argument);
}

TEST(FileManager, flushesAFolder) {
    const Zoo zoo;
    EXPECT_TRUE(files().flushDirectory(zoo.directory));
    EXPECT_FALSE(files().flushDirectory(zoo.folder / "missing"));
    EXPECT_FALSE(files().flushDirectory(zoo.file));
    EXPECT_FALSE(files().flushDirectory("/proc/self")) << "procfs cannot flush a folder";
}

TEST(FileManager, flushesAVolume) {
    const Zoo zoo;
    files().flushVolume(zoo.folder.path());
    EXPECT_EQ(codeOf([&] { files().flushVolume(zoo.folder / "missing"); }),
              std::errc::no_such_file_or_directory);
}

} // namespace
} // namespace torvo::test
