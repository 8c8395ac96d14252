#include "Platform/FileOperations.h"

#include "Platform/NotFound.h"
#include "Platform/TemporaryFile.h"
#include "Platform/TemporaryName.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <exception>
#include <string>
#include <utility>

namespace torvo {

namespace fs = std::filesystem;

namespace {

/// The current time by the clock of the file system that holds `folder`. The clock of a file server
/// may differ from the local clock.
std::chrono::sys_seconds fileSystemTime(const FileManager& fileManager, const fs::path& folder) {
    return TemporaryFile(fileManager, folder / temporaryName()).status().modified;
}

/// The final target of a chain of symbolic links, which need not exist.
fs::path followingLinks(const FileManager& fileManager, const fs::path& path) {
    constexpr int maxLinkCount = 40; // the limit of Linux
    auto target = path;
    for (int count = 0; count < maxLinkCount; ++count) {
        const auto status = fileManager.linkStatus(target);
        if (!status || status->kind != FileKind::symbolicLink)
            return target;
        target = target.parent_path() / fileManager.linkTarget(target);
    }
    throw FileError(FileOperation::write, path, ELOOP);
}

} // namespace

std::vector<std::byte> readFile(const FileManager& fileManager, const fs::path& path) {
    const auto file = fileManager.open(path, OpenMode::read);
    std::vector<std::byte> bytes(file->size());
    bytes.resize(file->read(0, bytes));
    return bytes;
}

void writeFileAtomically(const FileManager& fileManager, const fs::path& path,
                         const std::function<void(File&)>& write,
                         std::optional<fs::perms> permissions) {
    writeTemporaryFile(fileManager, path, permissions, [&write](File& file) {
        write(file);
        file.flush();
    })->replace(path);
}

void writeFileAtomically(const FileManager& fileManager, const fs::path& path,
                         std::span<const std::byte> bytes, std::optional<fs::perms> permissions) {
    writeFileAtomically(
        fileManager, path, [bytes](File& file) { file.write(0, bytes); }, permissions);
}

void saveDocument(const FileManager& fileManager, const fs::path& path,
                  std::span<const std::byte> bytes) {
    const auto target = followingLinks(fileManager, path);
    const auto folder = target.parent_path();
    const auto status = fileManager.linkStatus(target);
    if (status && status->kind != FileKind::regular)
        throw FileError(FileOperation::write, target,
                        status->kind == FileKind::directory ? EISDIR : EINVAL);
    removeAbandonedTemporaries(fileManager, folder);
    writeFileAtomically(fileManager, target, bytes,
                        status ? std::optional(status->permissions) : std::nullopt);
    // A folder that is writable but not readable cannot be opened for fsync(); flush the volume
    // through the file instead.
    if (!fileManager.flushDirectory(folder))
        fileManager.flushVolume(target);
}

MountGuard::MountGuard(std::shared_ptr<const FileManager> fileManager, fs::path path)
    : fileManager_(std::move(fileManager)), path_(std::move(path)), volume_(volume()) {}

std::uint64_t MountGuard::volume() const {
    const auto status = fileManager_->status(path_);
    if (!status)
        throw FileError(FileOperation::write, path_, ENODEV);
    return status->identity.device;
}

void MountGuard::requireSameVolume() const {
    if (volume() != volume_)
        throw FileError(FileOperation::write, path_, ENODEV);
}

void MountGuard::flush() const {
    fileManager_->flushVolume(path_);
    requireSameVolume();
}

void removeAbandonedTemporaries(const FileManager& fileManager, const fs::path& folder) {
    constexpr std::chrono::hours minAge{24}; // newer files may be in use, also by another computer
    try {
        std::vector<fs::path> temporaries;
        for (const auto& entry : fileManager.contentsOfDirectory(folder)) {
            if (entry.kind == FileKind::regular && isTemporaryName(entry.name))
                temporaries.push_back(folder / entry.name);
        }
        if (temporaries.empty())
            return;
        const auto now = fileSystemTime(fileManager, folder);
        for (const auto& path : temporaries) {
            const auto status = fileManager.linkStatus(path);
            if (status && now - status->modified >= minAge)
                fileManager.removeItem(path);
        }
    } catch (const FileError&) {
        // A failed cleanup must not fail the caller's operation.
    }
}

FileURL resolvingSymlinks(const FileManager& fileManager, const FileURL& url) {
    const auto kind = url.hasDirectoryPath() ? FileURL::Kind::directory : FileURL::Kind::file;
    // Resolve links before standardising, so that "link/.." is the parent of the link's target.
    std::vector<std::string> missing;
    auto existing = url;
    while (existing.path() != "/") {
        if (fileManager.linkStatus(existing.path())) {
            try {
                auto resolved = FileURL(fileManager.resolve(existing.path()), kind);
                std::ranges::reverse(missing);
                for (const auto& name : missing)
                    resolved = resolved.appendingPathComponent(name, kind);
                return resolved.standardized();
            } catch (const FileError& error) {
                // A broken link is kept in the result under its own name.
                if (!isNotFound(error))
                    throw;
            }
        }
        missing.push_back(existing.path().filename().native());
        existing = existing.deletingLastPathComponent();
    }
    return url.standardized();
}

} // namespace torvo
