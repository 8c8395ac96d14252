#pragma once

#include "Platform/FileError.h"
#include "Platform/FileURL.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace torvo {

enum class FileKind { regular, directory, symbolicLink, other };

/// Same identity, same file, whatever the path.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t node = 0;

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

struct FileStatus {
    FileKind kind = FileKind::regular;
    std::uint64_t size = 0;          ///< bytes
    std::uint64_t allocatedSize = 0; ///< bytes of the blocks on disk
    FileIdentity identity;
    std::filesystem::perms permissions = std::filesystem::perms::none;
    std::chrono::sys_seconds modified; ///< by the file system's clock
};

/// A name in a folder. `kind` is the entry's own: a link is a link, whatever it points to.
struct DirectoryEntry {
    std::string name;
    FileKind kind = FileKind::regular;
};

/// An open regular file. Every function throws `FileError` on failure; a read that meets the end
/// of the file is none.
class File {
public:
    virtual ~File() = default;

    /// Fills `bytes` from `offset` on; fewer bytes come back only at the end of the file.
    virtual std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const = 0;
    /// Writes all of `bytes` at `offset`.
    virtual void write(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    /// Size in bytes, now; of a file that is opened for reading only, when it was opened.
    virtual std::uint64_t size() const = 0;
    virtual void resize(std::uint64_t size) = 0;
    virtual void setPermissions(std::filesystem::perms permissions) = 0;
    /// Waits until the content is on the medium.
    virtual void flush() = 0;
    /// Reports what the destructor would swallow. Nothing may be called afterwards.
    virtual void close() = 0;
};

/// An exclusive lock on a folder, released by the destructor.
class FolderLock {
public:
    virtual ~FolderLock() = default;
};

enum class OpenMode {
    read,         ///< an existing regular file
    update,       ///< an existing regular file, read and written in place
    create,       ///< a new or emptied file with ordinary permissions
    createUnique, ///< a new file with ordinary permissions; an existing one is an error
};

/// The file system as the core sees it. It is an interface so that faults can be put between the
/// program and the disk. Functions may be called from any thread and throw `FileError`.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// What stands at the path, a link itself not followed. Absent when there is nothing.
    virtual std::optional<FileStatus> linkStatus(const std::filesystem::path& path) const = 0;
    /// What stands at the path, links followed. Absent when there is nothing or a dead link.
    virtual std::optional<FileStatus> status(const std::filesystem::path& path) const = 0;
    /// The path of an existing item without any link, "." or "..".
    virtual std::filesystem::path resolve(const std::filesystem::path& path) const = 0;
    /// The stored target of a symbolic link, often relative to the link's folder.
    virtual std::filesystem::path linkTarget(const std::filesystem::path& link) const = 0;
    /// The entries of a folder, unordered, without "." and "..".
    virtual std::vector<DirectoryEntry>
    contentsOfDirectory(const std::filesystem::path& path) const = 0;

    /// Creates the folder and those above it; one that exists is left as it is.
    virtual void createDirectory(const std::filesystem::path& path) const = 0;
    /// Removes a file, a link (never what it points to) or a folder with all its content.
    virtual void removeItem(const std::filesystem::path& path) const = 0;
    /// Copies a file's bytes to a new file with ordinary permissions.
    virtual void copyItem(const std::filesystem::path& source,
                          const std::filesystem::path& destination) const = 0;
    /// Puts `source` in the place of `destination` in one step.
    virtual void replaceItem(const std::filesystem::path& destination,
                             const std::filesystem::path& source) const = 0;

    /// Opens a regular file; anything else (a folder, a pipe, a device) is an error and is not
    /// waited for.
    virtual std::unique_ptr<File> open(const std::filesystem::path& path, OpenMode mode) const = 0;

    /// Waits until the folder's entries have reached the storage medium. Returns false when the
    /// folder cannot be opened for reading or its file system cannot flush folders.
    virtual bool flushDirectory(const std::filesystem::path& path) const = 0;
    /// Waits until all data written to the volume that holds `path` has reached the storage medium.
    virtual void flushVolume(const std::filesystem::path& path) const = 0;

    /// Takes an advisory lock on an existing folder (flock()); the operating system releases it
    /// when the process ends. Does not wait: throws `FileError` with the code EWOULDBLOCK when
    /// another process holds the lock, and with any other code when the folder cannot be locked.
    virtual std::unique_ptr<FolderLock> lockFolder(const std::filesystem::path& folder) const = 0;

    /// The number of bytes that can still be written to the volume that holds `folder`. Empty when
    /// it is unknown, and on file systems where a copy may take up less than its size.
    virtual std::optional<std::uint64_t>
    availableSpace(const std::filesystem::path& folder) const = 0;
};

/// The operating system's file system.
std::shared_ptr<const FileManager> systemFileManager();

/// The whole file.
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

/// The resolved path of an item that may not exist yet: links are followed as far as there is
/// something, the rest is standardised. Throws `FileError` when what is there cannot be looked at.
FileURL resolvingSymlinks(const FileManager& fileManager, const FileURL& url);

/// One item below a folder, as the deep enumeration finds it.
struct EnumeratedItem {
    FileURL url;
    FileKind kind = FileKind::regular; ///< the entry's own kind
};

enum class EnumerationOptions {
    skipPackageContents, ///< does not enter folders that the desktop shows as one item
    skipHidden,          ///< omits names that begin with a dot, and the contents of such folders
    skipNothing,
};

/// What becomes of a folder below the root that cannot be read.
enum class UnreadableFolders {
    passOver, ///< as a file browser does
    fail,     ///< its `FileError` ends the enumeration
};

using EnumerationVisitor = std::function<void(EnumeratedItem item)>;

/// Visits everything below `root`, depth first, the entries of each folder in byte order of their
/// names; each folder is listed right after it was visited. Links are visited and not followed.
/// False, and nothing is visited, when the root itself is no folder or cannot be read.
bool enumerateDeep(const FileManager& fileManager, const FileURL& root, EnumerationOptions options,
                   UnreadableFolders unreadable, const EnumerationVisitor& visit);

} // namespace torvo
