#pragma once

#include "Platform/FileError.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
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

/// Replaces `replacedSize` bytes at `offset` with `bytes`. The default changes nothing.
struct FileEdit {
    std::uint64_t offset = 0;
    std::uint64_t replacedSize = 0;
    std::vector<std::byte> bytes = {};
};

/// An open regular file. Every function throws `FileError` on failure; reaching end of file is not
/// an error.
class File {
public:
    using Bytes = std::span<const std::byte>;

    virtual ~File() = default;

    /// Reads into `bytes`, starting at `offset`. Returns the number of bytes read, which is smaller
    /// than the buffer only at end of file.
    virtual std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const = 0;
    /// Writes all of `bytes` at `offset`.
    void write(std::uint64_t offset, Bytes bytes) { writeParts(offset, std::span(&bytes, 1)); }
    /// Writes the parts one after the other, starting at `offset`, in one request: on a slow card a
    /// request costs more than the bytes of a small part.
    virtual void writeParts(std::uint64_t offset, std::span<const Bytes> parts) = 0;
    /// Writes the contents of `source` with an edit into this empty file. File systems that share
    /// blocks between files share those of the source. Throws when the source has become smaller
    /// since its size was read.
    virtual void copyFrom(const File& source, const FileEdit& edit) = 0;
    /// The path given to `open`.
    virtual std::filesystem::path path() const = 0;
    /// The POSIX descriptor, for system calls that take two files. Empty for a file without one.
    virtual std::optional<int> descriptor() const = 0;
    /// The current size in bytes. A file opened read-only reports its size at the time of opening.
    virtual std::uint64_t size() const = 0;
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
    /// Whether `flushVolume` is known to flush the content of every file on the volume that holds
    /// `folder`, so that it can stand in for `File::flush`.
    virtual bool volumeFlushCoversFiles(const std::filesystem::path& folder) const = 0;

    /// Takes an advisory lock on an existing folder (flock()); the operating system releases it
    /// when the process ends. Does not wait: throws `FileError` with the code EWOULDBLOCK when
    /// another process holds the lock, and with any other code when the folder cannot be locked.
    virtual std::unique_ptr<FolderLock> lockFolder(const std::filesystem::path& folder) const = 0;

    /// The number of bytes that can still be written to the volume that holds `folder`. Empty when
    /// it is unknown, and on file systems where a copy may take up less than its size.
    virtual std::optional<std::uint64_t>
    availableSpace(const std::filesystem::path& folder) const = 0;

    /// Whether a volume is mounted on `folder`, links resolved. False for a subvolume of Btrfs,
    /// although it has a device number of its own, and where the kernel cannot tell (before Linux
    /// 5.8).
    virtual bool isMountPoint(const std::filesystem::path& folder) const = 0;
};

} // namespace torvo
