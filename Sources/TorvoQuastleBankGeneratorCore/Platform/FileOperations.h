#pragma once

#include "Platform/FileManager.h"
#include "Platform/FileURL.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace torvo {

/// Reads a whole file into memory.
std::vector<std::byte> readFile(const FileManager& fileManager, const std::filesystem::path& path);

/// Writes a hidden temporary file in the folder of `path`, flushes it and renames it to `path`, so
/// that `path` has either the old or the new content, never a part of it. On failure the temporary
/// file is removed and the `FileError` names `path`. `write` is called with the empty file. Without
/// `permissions` the file has the default permissions of a new file; otherwise they are set before
/// any content is written, except on file systems without permissions.
void writeFileAtomically(const FileManager& fileManager, const std::filesystem::path& path,
                         const std::function<void(File&)>& write,
                         std::optional<std::filesystem::perms> permissions = std::nullopt);
void writeFileAtomically(const FileManager& fileManager, const std::filesystem::path& path,
                         std::span<const std::byte> bytes,
                         std::optional<std::filesystem::perms> permissions = std::nullopt);

/// Replaces a file's content as `writeFileAtomically` does, and returns once the content and the
/// file's name have reached the storage medium. An existing file keeps its permissions. A symbolic
/// link is kept: its target is written, and created if it does not exist. Throws `FileError` when
/// the target is not a regular file.
void saveDocument(const FileManager& fileManager, const std::filesystem::path& path,
                  std::span<const std::byte> bytes);

/// Detects that the card holding a folder was removed during a run. The mount point then becomes an
/// ordinary folder on the system disk, and further files would be written there.
class MountGuard {
public:
    /// Remembers the volume of `path`. Throws `FileError` when nothing exists there.
    MountGuard(std::shared_ptr<const FileManager> fileManager, std::filesystem::path path);

    /// Throws `FileError` when the path is no longer on the same volume.
    void requireSameVolume() const;
    /// Waits until all data written to the volume has reached the storage medium. Throws
    /// `FileError` also when the path is no longer on that volume.
    void flush() const;

private:
    std::uint64_t volume() const;

    std::shared_ptr<const FileManager> fileManager_;
    std::filesystem::path path_;
    std::uint64_t volume_;
};

/// Removes the temporary files that `writeFileAtomically` left in a folder when the program was
/// killed or the card was removed. Only files not modified for 24 hours are removed. Errors are
/// ignored.
void removeAbandonedTemporaries(const FileManager& fileManager,
                                const std::filesystem::path& folder);

/// The resolved path of an item that may not exist yet: symbolic links are resolved in the part
/// that exists, and the rest is standardised. Throws `FileError` when an existing part cannot be
/// inspected.
FileURL resolvingSymlinks(const FileManager& fileManager, const FileURL& url);

} // namespace torvo
