#include "IgnoredItemLookUp.h"

#include "Platform/FileOperations.h"

#include <algorithm>

namespace torvo::app {

namespace {

/// Whether an item at the top of the scanned folder is the only one that a row with its name can
/// mean.
bool isUnambiguous(const ScanReport& report, const std::string& name, const FileURL& item,
                   FileKind kind) {
    const auto folders = std::ranges::count(report.ignoredFolders, name, &IgnoredItem::path);
    const auto files = std::ranges::count(report.ignoredFiles, name, &IgnoredItem::path);
    const auto isSample = [&](ChannelRole role) {
        return std::ranges::any_of(report.buckets.samples(role),
                                   [&](const SampleCandidate& sample) {
                                       return sample.sourceURL.nativePath() == item.nativePath();
                                   });
    };
    return folders + files == 1 && (folders == 1) == (kind == FileKind::directory) &&
           std::ranges::none_of(allChannelRoles, isSample);
}

} // namespace

std::optional<FileURL> findIgnoredItem(const FileManager& fileManager, const ScanReport& report,
                                       const std::string& path) {
    const FileURL item = report.sourceFolder.appendingPathComponent(path);
    const FileURL folder = item.deletingLastPathComponent();
    try {
        const auto status = fileManager.linkStatus(item.path());
        // The scanner lists resolved paths. Only a broken link is listed under its own name.
        if (!status || (status->kind == FileKind::symbolicLink && fileManager.status(item.path())))
            return std::nullopt;
        if (resolvingSymlinks(fileManager, folder).nativePath() != folder.nativePath())
            return std::nullopt;
        if (path.find('/') == std::string::npos && !isUnambiguous(report, path, item, status->kind))
            return std::nullopt;
        return item;
    } catch (const FileError&) {
        return std::nullopt;
    }
}

} // namespace torvo::app
