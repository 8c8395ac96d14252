#include "SampleScanner.h"

#include "Models/GenerationError.h"
#include "Platform/FileOperations.h"
#include "Platform/FolderWalk.h"
#include "Platform/IOThreadPool.h"
#include "Platform/LoadedLibrary.h"
#include "Platform/NotFound.h"
#include "Platform/UnicodeText.h"
#include "RoleClassifier.h"

#include <algorithm>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace torvo {

namespace {

constexpr auto hiddenReason = "Ignored hidden or sidecar file";
constexpr auto unclassifiedReason = "Unclassified sample";
constexpr auto unsupportedReason = "Unsupported audio file";
constexpr auto ignoredFolderReason = "Ignored v1 folder";

/// No folder between the file and the source folder determines a role.
struct NoFolderDecides {};
/// The result for the folders above a file: a role, an ignored folder, or neither.
using FolderDecision = std::variant<NoFolderDecides, ChannelRole, IgnoredItem>;

/// The path relative to the root. For items outside the root, only the name.
std::string relativePathForDisplay(const FileURL& url, const FileURL& root) {
    const auto& path = url.nativePath();
    const auto& rootPath = root.nativePath();
    if (path == rootPath)
        return ".";
    const auto prefix = rootPath == "/" ? rootPath : rootPath + "/";
    if (path.starts_with(prefix))
        return text::validUTF8(path.substr(prefix.size()));
    return url.lastPathComponent();
}

/// Classifies the folders of one scan, each folder once.
class FolderJudge {
public:
    explicit FolderJudge(FileURL root) : root_(std::move(root)) {}

    /// The nearest folder with a role or an ignored name determines the result. The name of the
    /// source folder itself is not considered.
    const FolderDecision& classifyFromAncestors(const FileURL& folder) {
        const auto& path = folder.nativePath();
        if (const auto known = decisions_.find(path); known != decisions_.end())
            return known->second;
        return decisions_.emplace(path, decide(folder)).first->second;
    }

private:
    FolderDecision decide(const FileURL& folder) {
        const auto& path = folder.nativePath();
        const auto& rootPath = root_.nativePath();
        // Intended: compare text, not path components. A link in "Kit" may lead to a file in the
        // sibling folder "Kit Extra"; the names of the folders there count as if they were inside
        // "Kit".
        if (path == rootPath || !path.starts_with(rootPath))
            return NoFolderDecides{};
        const auto name = folder.lastPathComponent();
        if (namesIgnoredFolder(name))
            return IgnoredItem{relativePathForDisplay(folder, root_), ignoredFolderReason};
        if (const auto role = classifyRole(name))
            return *role;
        return classifyFromAncestors(folder.deletingLastPathComponent());
    }

    FileURL root_;
    std::unordered_map<std::string, FolderDecision> decisions_;
};

/// A file with a role, and its format once it has been opened.
struct ClassifiedFile {
    FileURL url;
    ChannelRole role = ChannelRole::kick;
    bool mayBeOpened = true;  ///< false for pipes, sockets, devices and dead links
    std::size_t position = 0; ///< in the order of the enumeration
    std::optional<AudioFormatDetails> format = std::nullopt;
};

/// An ignored file, smaller than an `IgnoredItem`, which has a copy of the reason.
struct IgnoredFile {
    std::string path;
    const char* reason = nullptr;
    std::size_t position = 0; ///< in the enumeration
};

bool isHiddenOrSidecar(const FileURL& url) {
    if (url.lastPathComponent().starts_with('.'))
        return true;
    const auto extension = text::lowercased(url.pathExtension());
    return extension == "asd" || extension == "ds_store";
}

/// Resolves an item that is a symbolic link. A broken link, which some editors use as a lock file,
/// is returned as a file of kind `other`. Throws `FileError` when the target cannot be inspected
/// for another reason.
EnumeratedItem followed(const FileManager& fileManager, EnumeratedItem item) {
    if (item.kind != FileKind::symbolicLink)
        return item; // the enumeration starts at the resolved root and follows no links
    try {
        const FileURL target(fileManager.resolve(item.url.path()));
        const auto status = fileManager.status(target.path());
        return {target, status ? status->kind : FileKind::other};
    } catch (const FileError& error) {
        if (!isNotFound(error))
            throw;
        return {std::move(item.url), FileKind::other};
    }
}

/// Sorts by path. Files with the same displayed path (targets of two links) keep the order of the
/// enumeration, although files that had to be opened are added later.
std::vector<IgnoredItem> sortedByPath(std::vector<IgnoredFile> files) {
    std::ranges::sort(files, [](const IgnoredFile& left, const IgnoredFile& right) {
        return std::tie(left.path, left.position) < std::tie(right.path, right.position);
    });
    std::vector<IgnoredItem> items;
    items.reserve(files.size());
    for (auto& file : files)
        items.push_back({std::move(file.path), file.reason});
    return items;
}

/// Opens files while the enumeration continues.
class Inspection {
public:
    explicit Inspection(const AudioFileInspecting& inspector) : inspector_(inspector) {}

    void add(ClassifiedFile file) {
        if (blocks_.empty() || blocks_.back().size() == blockSize)
            blocks_.emplace_back().reserve(blockSize);
        auto& added = blocks_.back().emplace_back(std::move(file));
        if (added.mayBeOpened)
            pool_.run([this, &added] { inspect(added); });
    }

    IOThreadPool& pool() { return pool_; }

    /// Waits until all files have been opened and returns them in the order of `add`.
    std::list<std::vector<ClassifiedFile>> finish() {
        pool_.wait();
        return std::move(blocks_);
    }

private:
    // Large enough for the system to take back the memory of a block as soon as it is freed; of a
    // block that is not full it has only lent what is used.
    static constexpr std::size_t blockSize = 4096;

    void inspect(ClassifiedFile& file) const {
        try {
            file.format = inspector_.inspectAudioFile(file.url);
        } catch (const BrokenInstallation&) {
            throw; // affects all files, so the scan fails
        } catch (const std::exception&) {
            // A file that is not audio does not fail the scan; a missing format marks it as
            // unsupported.
        }
    }

    const AudioFileInspecting& inspector_;
    // Tasks refer to the elements, so their addresses must not change.
    std::list<std::vector<ClassifiedFile>> blocks_;
    IOThreadPool pool_; // ends its tasks before the elements are destroyed
};

/// Makes room for the files that could be read.
void reserveSamples(RoleBuckets& buckets, const std::list<std::vector<ClassifiedFile>>& blocks) {
    std::map<ChannelRole, std::size_t> counts;
    for (const auto& block : blocks) {
        for (const auto& file : block)
            counts[file.role] += file.format ? 1U : 0U;
    }
    for (const auto& [role, count] : counts)
        buckets.samples(role).reserve(count);
}

/// Classifies items by their names and passes files with a role to the inspection.
class NamePass {
public:
    NamePass(FileURL root, GenerationMode mode, Inspection& inspection)
        : root_(std::move(root)), mode_(mode), inspection_(inspection), judge_(root_) {}

    void take(EnumeratedItem item) {
        ++position_;
        if (item.kind == FileKind::directory)
            return;
        if (isHiddenOrSidecar(item.url)) {
            ignore(item.url, hiddenReason, position_);
        } else if (mode_ != GenerationMode::drums) {
            keep(std::move(item),
                 mode_ == GenerationMode::loops ? ChannelRole::loop : ChannelRole::stab);
        } else {
            takeDrum(std::move(item));
        }
    }

    void ignore(const FileURL& url, const char* reason, std::size_t position) {
        ignoredFiles_.push_back({relativePathForDisplay(url, root_), reason, position});
    }

    std::vector<IgnoredItem> takeIgnoredFiles() { return sortedByPath(std::move(ignoredFiles_)); }
    std::vector<IgnoredItem> takeIgnoredFolders() {
        std::vector<IgnoredItem> folders;
        for (auto& [path, folder] : ignoredFolders_)
            folders.push_back(std::move(folder));
        return folders; // the map is sorted by path
    }

private:
    void takeDrum(EnumeratedItem item) {
        const auto& decision = judge_.classifyFromAncestors(item.url.deletingLastPathComponent());
        if (const auto* folder = std::get_if<IgnoredItem>(&decision)) {
            ignoredFolders_.emplace(folder->path, *folder);
            return;
        }
        const auto* folderRole = std::get_if<ChannelRole>(&decision);
        const auto role = folderRole != nullptr
                              ? std::optional(*folderRole)
                              : classifyRole(item.url.lastPathComponentWithoutExtension());
        if (role)
            keep(std::move(item), *role);
        else
            ignore(item.url, unclassifiedReason, position_);
    }

    void keep(EnumeratedItem item, ChannelRole role) {
        inspection_.add({std::move(item.url), role, item.kind == FileKind::regular, position_});
    }

    FileURL root_;
    GenerationMode mode_;
    Inspection& inspection_;
    FolderJudge judge_;
    std::size_t position_ = 0; ///< of the last item
    std::vector<IgnoredFile> ignoredFiles_;
    std::map<std::string, IgnoredItem> ignoredFolders_;
};

} // namespace

SampleScanner::SampleScanner(std::shared_ptr<const AudioFileInspecting> inspector,
                             AudioCompatibilityEvaluator evaluator,
                             std::shared_ptr<const FileManager> fileManager)
    : inspector_(std::move(inspector)),
      evaluator_(evaluator),
      fileManager_(std::move(fileManager)) {}

ScanReport SampleScanner::scan(const FileURL& sourceFolder, GenerationMode mode) const {
    const auto unreadable = [&] {
        return GenerationError::exportFailed("Unable to read " + sourceFolder.shownPath() + ".");
    };
    FileURL root;
    try {
        root = FileURL::directory(resolvingSymlinks(*fileManager_, sourceFolder).path());
    } catch (const FileError&) {
        throw unreadable();
    }
    Inspection inspection(*inspector_);
    NamePass names(root, mode, inspection);
    if (!enumerateDeep(
            *fileManager_, root, EnumerationOptions::skipPackageContents,
            UnreadableFolders::passOver,
            [&](EnumeratedItem item) { names.take(followed(*fileManager_, std::move(item))); },
            &inspection.pool()))
        throw unreadable();

    ScanReport report{mode, root, {}, {}, {}};
    auto blocks = inspection.finish();
    reserveSamples(report.buckets, blocks);
    // A library may have a million files: each block is freed before the next one is moved.
    for (; !blocks.empty(); blocks.pop_front()) {
        for (auto& [url, role, mayBeOpened, position, format] : blocks.front()) {
            if (!format) {
                names.ignore(url, unsupportedReason, position);
                continue;
            }
            auto displayName = url.lastPathComponentWithoutExtension();
            report.buckets.samples(role).push_back({std::move(url), role, std::move(displayName),
                                                    evaluator_.compatibility(*format),
                                                    std::move(*format)});
        }
    }
    report.ignoredFiles = names.takeIgnoredFiles();
    report.ignoredFolders = names.takeIgnoredFolders();
    return report;
}

} // namespace torvo
