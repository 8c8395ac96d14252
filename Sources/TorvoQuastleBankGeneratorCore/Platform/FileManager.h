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

/// Identifies a file independently of its path (POSIX `st_dev` and `st_ino`).
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

/// An entry of a folder. `kind` describes the entry itself; symbolic links are not followed.
struct DirectoryEntry {
    std::string name;
    FileKind kind = FileKind::regular;
};

/// An open regular file. Every function throws `FileError` on failure; reaching end of file is not
/// an error.
class File {
public:
    virtual ~File() = default;

    /// Reads into `bytes`, starting at `offset`. Returns the number of bytes read, which is smaller
    /// than the buffer only at end of file.
    virtual std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const = 0;
    /// Writes all of `bytes` at `offset`.
    virtual void write(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    /// The current size in bytes. A file opened read-only reports its size at the time of opening.
    virtual std::uint64_t size() const = 0;
    virtual void resize(std::uint64_t size) = 0;
    virtual void setPermissions(std::filesystem::perms permissions) = 0;
    /// Waits until the content has reached the storage medium.
    virtual void flush() = 0;
    /// Closes the file and throws the error that the destructor would ignore. No other function may
    /// be called afterwards.
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
    create,       ///< a new or truncated file with default permissions
    createUnique, ///< a new file with default permissions; an existing one is an error
};

/// The file system operations that the core uses. They form an interface so that tests can inject
/// faults. All functions are thread-safe and throw `FileError`.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// The status of the item at `path` without following a symbolic link. Empty when nothing
    /// exists there.
    virtual std::optional<FileStatus> linkStatus(const std::filesystem::path& path) const = 0;
    /// The status of the item at `path`, following symbolic links. Empty when nothing exists there
    /// or the link is broken.
    virtual std::optional<FileStatus> status(const std::filesystem::path& path) const = 0;
    /// The absolute path of an existing item with all symbolic links, "." and ".." resolved.
    virtual std::filesystem::path resolve(const std::filesystem::path& path) const = 0;
    /// The stored target of a symbolic link, often relative to the link's folder.
    virtual std::filesystem::path linkTarget(const std::filesystem::path& link) const = 0;
    /// The entries of a folder, unordered, without "." and "..".
    virtual std::vector<DirectoryEntry>
    contentsOfDirectory(const std::filesystem::path& path) const = 0;

    /// Creates the folder and its missing parents. Does nothing if it exists.
    virtual void createDirectory(const std::filesystem::path& path) const = 0;
    /// Removes a file, a symbolic link (not its target) or a folder with its contents.
    virtual void removeItem(const std::filesystem::path& path) const = 0;
    /// Copies a file's bytes to a new file with default permissions.
    virtual void copyItem(const std::filesystem::path& source,
                          const std::filesystem::path& destination) const = 0;
    /// Atomically replaces `destination` with `source` (POSIX rename()).
    virtual void replaceItem(const std::filesystem::path& destination,
                             const std::filesystem::path& source) const = 0;

    /// Opens a regular file. Anything else (a folder, a pipe, a device) is an error; opening never
    /// blocks.
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

/// The implementation that uses POSIX and Linux system calls.
std::shared_ptr<const FileManager> systemFileManager();

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

/// An item found by `enumerateDeep`.
struct EnumeratedItem {
    FileURL url;
    FileKind kind = FileKind::regular; ///< kind of the entry itself; links are not followed
};

enum class EnumerationOptions {
    skipPackageContents, ///< does not enter folders that the desktop shows as one item
    skipHidden,          ///< omits names that begin with a dot, and the contents of such folders
    skipNothing,
};

/// How an unreadable folder below the root is handled.
enum class UnreadableFolders {
    passOver, ///< skips the folder, as a file browser does
    fail,     ///< throws its `FileError`
};

using EnumerationVisitor = std::function<void(EnumeratedItem item)>;

/// Visits every item below `root` depth first, the entries of each folder in byte order of their
/// names. A folder is listed right after it was visited. Symbolic links are visited but not
/// followed. Returns false without visiting anything when `root` is not a readable folder.
bool enumerateDeep(const FileManager& fileManager, const FileURL& root, EnumerationOptions options,
                   UnreadableFolders unreadable, const EnumerationVisitor& visit);

} // namespace torvo
