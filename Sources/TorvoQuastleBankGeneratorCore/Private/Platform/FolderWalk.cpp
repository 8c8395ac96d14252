#include "Platform/FolderWalk.h"

#include "Platform/UnicodeText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <deque>
#include <memory>
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

/// The contents of a folder that are read on another thread.
class ListingAhead {
public:
    ListingAhead(const FileManager& fileManager, std::filesystem::path folder, IOThreadPool& pool)
        : pool_(pool),
          entries_(std::make_shared<std::vector<DirectoryEntry>>()),
          job_(pool.runFirst([&fileManager, folder = std::move(folder), entries = entries_] {
              *entries = sortedContents(fileManager, folder);
          })) {}

    std::vector<DirectoryEntry> take() {
        pool_.wait(*job_);
        return std::move(*entries_);
    }

private:
    IOThreadPool& pool_;
    std::shared_ptr<std::vector<DirectoryEntry>> entries_;
    std::shared_ptr<IOThreadPool::Job> job_;
};

/// Depth-first walk with an explicit stack, because deeply nested folders could overflow the call
/// stack.
class DeepEnumeration {
public:
    DeepEnumeration(const FileManager& fileManager, EnumerationOptions options,
                    UnreadableFolders unreadable, const EnumerationVisitor& visit,
                    IOThreadPool* readAhead)
        : fileManager_(fileManager),
          options_(options),
          unreadable_(unreadable),
          visit_(visit),
          readAhead_(readAhead) {}

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
            if (isSkipped(entry))
                continue;
            const auto url = urlOf(level, entry);
            visit_({url, entry.kind});
            if (isEntered(url, entry))
                enterFolder(url);
        }
    }

private:
    struct Level {
        FileURL folder;
        std::vector<DirectoryEntry> entries;
        std::size_t next = 0;
        std::deque<ListingAhead> listings = {}; ///< of the next folders to be entered
        std::size_t nextToList = 0;
    };

    static constexpr std::size_t maxListingsAhead = IOThreadPool::minThreadLimit;

    static FileURL urlOf(const Level& level, const DirectoryEntry& entry) {
        return level.folder.appendingPathComponent(entry.name, entry.kind == FileKind::directory
                                                                   ? FileURL::Kind::directory
                                                                   : FileURL::Kind::file);
    }

    bool isSkipped(const DirectoryEntry& entry) const {
        return options_ == EnumerationOptions::skipHidden && entry.name.starts_with('.');
    }

    bool isEntered(const FileURL& url, const DirectoryEntry& entry) const {
        return entry.kind == FileKind::directory &&
               !(options_ == EnumerationOptions::skipPackageContents && isPackage(url));
    }

    void enter(const FileURL& folder, std::vector<DirectoryEntry> entries) {
        levels_.push_back({folder, std::move(entries)});
        listAhead(levels_.back());
    }

    void enterFolder(const FileURL& folder) {
        try {
            enter(folder, contentsOf(folder));
        } catch (const FileError&) {
            if (unreadable_ == UnreadableFolders::fail)
                throw;
        }
    }

    /// The entries of the next folder of the current level.
    std::vector<DirectoryEntry> contentsOf(const FileURL& folder) {
        if (readAhead_ == nullptr)
            return sortedContents(fileManager_, folder.path());
        auto& level = levels_.back();
        auto listing = std::move(level.listings.front());
        level.listings.pop_front();
        listAhead(level);
        return listing.take();
    }

    void listAhead(Level& level) {
        if (readAhead_ == nullptr)
            return;
        for (; level.listings.size() < maxListingsAhead && level.nextToList < level.entries.size();
             ++level.nextToList) {
            const auto& entry = level.entries[level.nextToList];
            if (entry.kind != FileKind::directory || isSkipped(entry))
                continue;
            const auto url = urlOf(level, entry);
            if (isEntered(url, entry))
                level.listings.emplace_back(fileManager_, url.path(), *readAhead_);
        }
    }

    const FileManager& fileManager_;
    EnumerationOptions options_;
    UnreadableFolders unreadable_;
    const EnumerationVisitor& visit_;
    IOThreadPool* readAhead_;
    std::vector<Level> levels_;
};

} // namespace

bool enumerateDeep(const FileManager& fileManager, const FileURL& root, EnumerationOptions options,
                   UnreadableFolders unreadable, const EnumerationVisitor& visit,
                   IOThreadPool* readAhead) {
    std::vector<DirectoryEntry> contents;
    try {
        contents = sortedContents(fileManager, root.path());
    } catch (const FileError&) {
        return false;
    }
    DeepEnumeration(fileManager, options, unreadable, visit, readAhead)
        .walk(root, std::move(contents));
    return true;
}

} // namespace torvo
