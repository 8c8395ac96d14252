#include "Platform/FolderWalk.h"

#include "Platform/UnicodeText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace torvo {

namespace {

/// Folders that the desktop shows as one item.
constexpr std::array<std::string_view, 10> packageExtensions{
    "app", "bundle", "framework", "plugin", "kext", "component", "vst", "vst3", "logicx", "band"};

bool isPackage(const FileURL& folder) {
    return std::ranges::find(packageExtensions, text::lowercased(folder.pathExtension())) !=
           packageExtensions.end();
}

std::vector<DirectoryEntry> sortedContents(const FileManager& fileManager,
                                           const std::filesystem::path& folder) {
    auto entries = fileManager.contentsOfDirectory(folder);
    std::ranges::sort(entries, {}, &DirectoryEntry::name);
    return entries;
}

/// Depth-first walk with an explicit stack, because deeply nested folders could overflow the call
/// stack.
class DeepEnumeration {
public:
    DeepEnumeration(const FileManager& fileManager, EnumerationOptions options,
                    UnreadableFolders unreadable, const EnumerationVisitor& visit)
        : fileManager_(fileManager), options_(options), unreadable_(unreadable), visit_(visit) {}

    /// `contents` are the entries of `root`.
    void walk(const FileURL& root, std::vector<DirectoryEntry> contents) {
        enter(root, std::move(contents));
        while (!levels_.empty()) {
            auto& level = levels_.back();
            if (level.next == level.entries.size()) {
                levels_.pop_back();
                continue;
            }
            const auto& entry = level.entries[level.next++];
            if (options_ == EnumerationOptions::skipHidden && entry.name.starts_with('.'))
                continue;
            const bool isFolder = entry.kind == FileKind::directory;
            const auto url = level.folder.appendingPathComponent(
                entry.name, isFolder ? FileURL::Kind::directory : FileURL::Kind::file);
            visit_({url, entry.kind});
            if (isFolder &&
                !(options_ == EnumerationOptions::skipPackageContents && isPackage(url)))
                enterFolder(url);
        }
    }

private:
    struct Level {
        FileURL folder;
        std::vector<DirectoryEntry> entries;
        std::size_t next = 0;
    };

    void enter(const FileURL& folder, std::vector<DirectoryEntry> entries) {
        levels_.push_back({folder, std::move(entries)});
    }

    void enterFolder(const FileURL& folder) {
        try {
            enter(folder, sortedContents(fileManager_, folder.path()));
        } catch (const FileError&) {
            if (unreadable_ == UnreadableFolders::fail)
                throw;
        }
    }

    const FileManager& fileManager_;
    EnumerationOptions options_;
    UnreadableFolders unreadable_;
    const EnumerationVisitor& visit_;
    std::vector<Level> levels_;
};

} // namespace

bool enumerateDeep(const FileManager& fileManager, const FileURL& root, EnumerationOptions options,
                   UnreadableFolders unreadable, const EnumerationVisitor& visit) {
    std::vector<DirectoryEntry> contents;
    try {
        contents = sortedContents(fileManager, root.path());
    } catch (const FileError&) {
        return false;
    }
    DeepEnumeration(fileManager, options, unreadable, visit).walk(root, std::move(contents));
    return true;
}

} // namespace torvo
