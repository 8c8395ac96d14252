#include "ExportChecks.h"

#include "Models/GenerationError.h"

#include <string_view>
#include <unordered_map>

namespace torvo {

namespace {

/// Checks whether a folder lies in the device folder. Compares file identities instead of paths,
/// because links and case-insensitive file systems give a folder several paths.
class DeviceFolderGuard {
public:
    DeviceFolderGuard(const FileManager& fileManager, FileIdentity deviceFolder)
        : fileManager_(fileManager), deviceFolder_(deviceFolder) {}

    bool contains(const FileURL& folder) {
        const auto& path = folder.nativePath();
        if (const auto known = answers_.find(path); known != answers_.end())
            return known->second;
        const auto status = fileManager_.status(folder.path());
        const bool answer = (status && status->identity == deviceFolder_) ||
                            (path != "/" && contains(folder.deletingLastPathComponent()));
        answers_.emplace(path, answer);
        return answer;
    }

private:
    const FileManager& fileManager_;
    FileIdentity deviceFolder_;
    std::unordered_map<std::string, bool> answers_;
};

} // namespace

void requireValidRunFolder(const FileManager& fileManager, const FileURL& runFolder,
                           const std::string& name) {
    if (name.empty() || name == "." || name == ".." ||
        name.find_first_of(std::string_view("/\0", 2)) != std::string::npos) {
        throw GenerationError::exportFailed("\"" + name +
                                            "\" cannot be the name of an export folder.");
    }
    const auto own = fileManager.linkStatus(runFolder.path());
    if (!own || own->kind != FileKind::symbolicLink)
        return;
    const auto target = fileManager.status(runFolder.path());
    if (!target || target->kind != FileKind::directory) {
        throw GenerationError::exportFailed(runFolder.shownPath() +
                                            " is a link that leads to no folder. Nothing was "
                                            "written.");
    }
}

void requireSourceOutside(const FileManager& fileManager, const FileURL& deviceFolder,
                          const ExportJob& job) {
    const auto status = fileManager.linkStatus(deviceFolder.path());
    if (!status || status->kind != FileKind::directory)
        return;
    DeviceFolderGuard guard(fileManager, status->identity);
    if (guard.contains(resolvingSymlinks(fileManager, job.sourceFolder))) {
        throw GenerationError::exportFailed("The source folder " + job.sourceFolder.shownPath() +
                                            " lies inside " + deviceFolder.shownPath() +
                                            ", which this export would replace.");
    }
    for (const auto& recipe : job.recipes) {
        for (const auto& [channel, sample] : recipe.channels) {
            // Also check the unresolved path: the export would delete a link in the device folder,
            // even to a sample outside.
            const auto named = sample.sourceURL.standardized();
            const auto resolved = resolvingSymlinks(fileManager, sample.sourceURL);
            if (guard.contains(named.deletingLastPathComponent()) ||
                guard.contains(resolved.deletingLastPathComponent())) {
                throw GenerationError::exportFailed(
                    "The sample " + sample.sourceURL.lastPathComponent() + " lies inside " +
                    deviceFolder.shownPath() + ", which this export would replace.");
            }
        }
    }
}

} // namespace torvo
