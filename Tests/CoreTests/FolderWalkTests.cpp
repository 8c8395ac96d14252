#include "FileKinds.h"
#include "LockedFolderFileManager.h"
#include "Platform/FolderWalk.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace torvo::test {
namespace {

using testing::ElementsAre;

std::vector<std::string> enumerated(const TemporaryFolder& folder, EnumerationOptions options,
                                    const FileManager& fileManager = files()) {
    std::vector<std::string> names;
    EXPECT_TRUE(enumerateDeep(
        fileManager, folder.url(), options, UnreadableFolders::passOver,
        [&](const EnumeratedItem& item) {
            EXPECT_EQ(item.url.hasDirectoryPath(), item.kind == FileKind::directory);
            names.push_back(item.url.path().lexically_relative(folder.path()).string());
        }));
    return names;
}

void ignoreItem(const EnumeratedItem&) {}

TEST(EnumerateDeep, walksDepthFirstInByteOrder) {
    const TemporaryFolder folder;
    for (const auto* path : {"b", "a/z", "a/B/x", "a/b", "a.b", "a b", "A", "\xFF", "é"})
        folder.write(path, "");
    EXPECT_THAT(
        enumerated(folder, EnumerationOptions::skipPackageContents),
        ElementsAre("A", "a", "a/B", "a/B/x", "a/b", "a/z", "a b", "a.b", "b", "é", "\xFF"));
}

TEST(EnumerateDeep, skipsWhatTheOptionsExclude) {
    const TemporaryFolder folder;
    for (const auto* path : {".hidden", ".folder/x", "x.app/y", "x.app.d/y"})
        folder.write(path, "");
    EXPECT_THAT(enumerated(folder, EnumerationOptions::skipPackageContents),
                ElementsAre(".folder", ".folder/x", ".hidden", "x.app", "x.app.d", "x.app.d/y"));
    EXPECT_THAT(enumerated(folder, EnumerationOptions::skipHidden),
                ElementsAre("x.app", "x.app/y", "x.app.d", "x.app.d/y"));
}

TEST(EnumerateDeep, yieldsLinksWithoutFollowingThem) {
    const FileKinds kinds;
    kinds.folder.write("directory/inside", "");
    EXPECT_THAT(enumerated(kinds.folder, EnumerationOptions::skipHidden),
                ElementsAre("circular link", "dead link", "directory", "directory/inside",
                            "directory link", "file", "file link", "pipe"));
}

TEST(EnumerateDeep, skipsLockedFoldersOrFailsByOption) {
    const TemporaryFolder folder;
    folder.write("a/x", "");
    folder.write("b/x", "");
    const LockedFolderFileManager locked(folder / "a");
    EXPECT_THAT(enumerated(folder, EnumerationOptions::skipHidden, locked),
                ElementsAre("a", "b", "b/x"));
    const auto error = thrown<FileError>([&] {
        enumerateDeep(locked, folder.url(), EnumerationOptions::skipHidden, UnreadableFolders::fail,
                      ignoreItem);
    });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->path(), folder / "a");
}

TEST(EnumerateDeep, yieldsNothingForAnUnreadableRoot) {
    const TemporaryFolder folder;
    const LockedFolderFileManager locked(folder.path());
    const auto isEnumerated = [](const FileManager& fileManager, const FileURL& root,
                                 UnreadableFolders unreadable) {
        return enumerateDeep(fileManager, root, EnumerationOptions::skipHidden, unreadable,
                             [](const EnumeratedItem&) { FAIL(); });
    };
    for (const auto unreadable : {UnreadableFolders::passOver, UnreadableFolders::fail}) {
        EXPECT_FALSE(isEnumerated(locked, folder.url(), unreadable));
        EXPECT_FALSE(isEnumerated(files(), FileURL(folder / "missing"), unreadable));
        EXPECT_FALSE(isEnumerated(files(), FileURL(folder.write("file", "")), unreadable));
    }
}

} // namespace
} // namespace torvo::test
