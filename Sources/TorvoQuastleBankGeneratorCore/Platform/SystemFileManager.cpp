#include "Platform/SystemFileManager.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/uio.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <utility>

namespace torvo {

namespace fs = std::filesystem;

namespace {

static_assert(sizeof(off_t) == sizeof(std::uint64_t), "files may be larger than 2 GiB");

/// Owns a file descriptor.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0)
            ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;

    int number() const { return number_; }
    bool isValid() const { return number_ >= 0; }
    int release() { return std::exchange(number_, -1); }

private:
    int number_;
};

/// Repeats a system call that was interrupted by a signal (EINTR). Not for close(): Linux releases
/// the descriptor even when close() is interrupted.
template <typename Call>
auto retryOnInterrupt(const Call& call) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

int openDescriptor(const fs::path& path, int flags) {
    constexpr mode_t defaultPermissions = 0666;
    return retryOnInterrupt(
        [&] { return ::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, defaultPermissions); });
}

FileKind kindOf(mode_t mode) {
    if (S_ISREG(mode))
        return FileKind::regular;
    if (S_ISDIR(mode))
        return FileKind::directory;
    if (S_ISLNK(mode))
        return FileKind::symbolicLink;
    return FileKind::other;
}

FileStatus statusOf(const struct stat& details) {
    return {.kind = kindOf(details.st_mode),
            .size = static_cast<std::uint64_t>(details.st_size),
            .allocatedSize = static_cast<std::uint64_t>(details.st_blocks) * S_BLKSIZE,
            .identity = {.device = details.st_dev, .node = details.st_ino},
            .permissions = static_cast<fs::perms>(details.st_mode) & fs::perms::mask,
            .modified = std::chrono::sys_seconds(std::chrono::seconds(details.st_mtim.tv_sec))};
}

std::optional<FileStatus> statusAt(const fs::path& path, int flags) {
    struct stat details {};
    if (::fstatat(AT_FDCWD, path.c_str(), &details, flags) == 0)
        return statusOf(details);
    // A loop of symbolic links (ELOOP) is treated as a broken link.
    if (errno == ENOENT || errno == ENOTDIR || errno == ELOOP)
        return std::nullopt;
    throw FileError(FileOperation::inspect, path, errno);
}

/// Returns false and sets `errno` when the file or folder could not be flushed.
bool fsyncDescriptor(const Descriptor& descriptor) {
    return retryOnInterrupt([&] { return ::fsync(descriptor.number()); }) == 0;
}

/// The bytes of the parts after the first `done` ones.
std::vector<iovec> buffersAfter(std::size_t done, std::span<const File::Bytes> parts) {
    std::vector<iovec> buffers;
    for (const auto& part : parts) {
        const auto rest = part.subspan(std::min(done, part.size()));
        done -= part.size() - rest.size();
        if (!rest.empty())
            buffers.push_back({const_cast<std::byte*>(rest.data()), rest.size()});
    }
    return buffers;
}

class SystemFile final : public File {
public:
    /// `readOnlySize` is the size in bytes of a file opened read-only.
    SystemFile(const fs::path& path, Descriptor descriptor,
               std::optional<std::uint64_t> readOnlySize = std::nullopt)
        : path_(path.native()), descriptor_(std::move(descriptor)), readOnlySize_(readOnlySize) {}

    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const auto count = retryOnInterrupt([&] {
                return ::pread(descriptor_.number(), bytes.data() + done, bytes.size() - done,
                               static_cast<off_t>(offset + done));
            });
            if (count == 0)
                break;
            if (count < 0)
                throw FileError(FileOperation::read, path_, errno);
            done += static_cast<std::size_t>(count);
        }
        return done;
    }

    void writeParts(std::uint64_t offset, std::span<const Bytes> parts) override {
        writeAll(FileOperation::write, offset, parts);
    }

    void copyFrom(const File& source, const FileEdit& edit) override {
        const auto size = source.size();
        const auto editEnd = edit.offset + edit.replacedSize;
        const bool keepsSize = edit.bytes.size() == edit.replacedSize;
        const auto done = copyInKernel(source, keepsSize ? size : edit.offset);
        if (done < edit.offset)
            copyThroughBuffer(source, done, edit.offset, done, edit.bytes);
        else
            writeAll(FileOperation::copy, edit.offset, std::array{Bytes(edit.bytes)});
        const auto restOffset = std::max(done, editEnd);
        copyThroughBuffer(source, restOffset, size,
                          restOffset - edit.replacedSize + edit.bytes.size(), {});
    }

    fs::path path() const override { return path_; }

    std::optional<int> descriptor() const override { return descriptor_.number(); }

    std::uint64_t size() const override {
        if (readOnlySize_)
            return *readOnlySize_;
        struct stat details {};
        if (::fstat(descriptor_.number(), &details) != 0)
            throw FileError(FileOperation::inspect, path_, errno);
        return static_cast<std::uint64_t>(details.st_size);
    }

    void setPermissions(fs::perms permissions) override {
        const auto result = retryOnInterrupt(
            [&] { return ::fchmod(descriptor_.number(), static_cast<mode_t>(permissions)); });
        if (result != 0)
            throw FileError(FileOperation::write, path_, errno);
    }

    void flush() override {
        if (!fsyncDescriptor(descriptor_))
            throw FileError(FileOperation::flush, path_, errno);
    }

    void close() override {
        // EINTR is not an error: Linux has released the descriptor (close(2)).
        if (::close(descriptor_.release()) != 0 && errno != EINTR)
            throw FileError(FileOperation::flush, path_, errno);
    }

private:
    void writeAll(FileOperation operation, std::uint64_t offset, std::span<const Bytes> parts) {
        std::size_t done = 0;
        for (auto buffers = buffersAfter(done, parts); !buffers.empty();
             buffers = buffersAfter(done, parts)) {
            const auto count = retryOnInterrupt([&] {
                return ::pwritev(descriptor_.number(), buffers.data(),
                                 static_cast<int>(buffers.size()),
                                 static_cast<off_t>(offset + done));
            });
            if (count < 0)
                throw FileError(operation, path_, errno);
            done += static_cast<std::size_t>(count);
        }
    }

    /// Copies the first `size` bytes with copy_file_range() where the file systems support it.
    /// Returns the number of bytes copied.
    std::uint64_t copyInKernel(const File& source, std::uint64_t size) {
        constexpr std::uint64_t maxCopySize = std::uint64_t{1} << 30U;
        const auto input = source.descriptor();
        loff_t from = 0;
        loff_t to = 0;
        while (input && static_cast<std::uint64_t>(to) < size) {
            const auto rest = std::min(size - static_cast<std::uint64_t>(to), maxCopySize);
            const auto count = retryOnInterrupt([&] {
                return ::copy_file_range(*input, &from, descriptor_.number(), &to,
                                         static_cast<std::size_t>(rest), 0);
            });
            // Some file systems return 0 instead of an error when they do not support the call.
            if (count == 0)
                break;
            if (count < 0) {
                if (errno == EXDEV || errno == ENOSYS || errno == EINVAL || errno == EOPNOTSUPP ||
                    errno == EPERM)
                    break;
                throw FileError(FileOperation::copy, path_, errno);
            }
        }
        return static_cast<std::uint64_t>(to);
    }

    /// Copies the bytes of `source` from `begin` to `end`, followed by `tail`, to `offset`. Writes
    /// the last block and the tail together.
    void copyThroughBuffer(const File& source, std::uint64_t begin, std::uint64_t end,
                           std::uint64_t offset, Bytes tail) {
        constexpr std::uint64_t maxBlockSize = std::uint64_t{256} * 1024;
        if (begin >= end)
            return;
        std::vector<std::byte> block(static_cast<std::size_t>(std::min(end - begin, maxBlockSize)));
        while (begin < end) {
            const auto part = std::span(block).first(
                static_cast<std::size_t>(std::min<std::uint64_t>(end - begin, block.size())));
            if (source.read(begin, part) < part.size())
                throw FileError(FileOperation::read, source.path(), EIO);
            begin += part.size();
            writeAll(FileOperation::copy, offset,
                     std::array{Bytes(part), begin < end ? Bytes() : tail});
            offset += part.size();
        }
    }

    std::string path_; ///< a string takes less memory than a path
    Descriptor descriptor_;
    std::optional<std::uint64_t> readOnlySize_;
};

/// Opens an existing regular file for reading and returns its descriptor and size in bytes.
/// O_NONBLOCK keeps open() from blocking on a named pipe.
std::pair<Descriptor, std::uint64_t> openRegular(const fs::path& path) {
    Descriptor descriptor(openDescriptor(path, O_RDONLY | O_NONBLOCK));
    if (!descriptor.isValid())
        throw FileError(FileOperation::read, path, errno);
    struct stat details {};
    if (::fstat(descriptor.number(), &details) != 0)
        throw FileError(FileOperation::inspect, path, errno);
    if (!S_ISREG(details.st_mode))
        throw FileError(FileOperation::read, path, S_ISDIR(details.st_mode) ? EISDIR : EINVAL);
    return {std::move(descriptor), static_cast<std::uint64_t>(details.st_size)};
}

Descriptor openNew(const fs::path& path, int flags) {
    Descriptor descriptor(openDescriptor(path, flags | O_RDWR | O_CREAT));
    if (!descriptor.isValid())
        throw FileError(FileOperation::write, path, errno);
    return descriptor;
}

class SystemFolderLock final : public FolderLock {
public:
    explicit SystemFolderLock(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

private:
    Descriptor descriptor_; ///< closing it releases the lock
};

/// The number of the file system's kind in <linux/magic.h>, empty when statfs() fails.
std::optional<std::uint32_t> fileSystemType(const fs::path& folder) {
    struct statfs details {};
    if (::statfs(folder.c_str(), &details) != 0)
        return std::nullopt;
    return static_cast<std::uint32_t>(details.f_type);
}

/// Whether the file system compresses data, or copy_file_range() may share blocks with the source
/// on it. True when its type is unknown.
bool mayStoreLessThanSize(const fs::path& folder) {
    // <linux/magic.h> does not define ZFS and bcachefs.
    constexpr std::array<std::uint32_t, 10> types{
        BTRFS_SUPER_MAGIC,  XFS_SUPER_MAGIC,  F2FS_SUPER_MAGIC, OCFS2_SUPER_MAGIC,
        NFS_SUPER_MAGIC,    CIFS_SUPER_MAGIC, SMB2_SUPER_MAGIC, CEPH_SUPER_MAGIC,
        0x2FC12FC1 /*ZFS*/, 0xCA451A4E /*bcachefs*/};
    const auto type = fileSystemType(folder);
    return !type || std::ranges::find(types, *type) != types.end();
}

class SystemFileManager final : public FileManager {
public:
    std::optional<FileStatus> linkStatus(const fs::path& path) const override {
        return statusAt(path, AT_SYMLINK_NOFOLLOW);
    }

    std::optional<FileStatus> status(const fs::path& path) const override {
        return statusAt(path, 0);
    }

    fs::path resolve(const fs::path& path) const override {
        std::error_code code;
        auto resolved = fs::canonical(path, code);
        if (code)
            throw FileError(FileOperation::read, path, code);
        return resolved;
    }

    fs::path linkTarget(const fs::path& link) const override {
        std::error_code code;
        auto target = fs::read_symlink(link, code);
        if (code)
            throw FileError(FileOperation::inspect, link, code);
        return target;
    }

    std::vector<DirectoryEntry> contentsOfDirectory(const fs::path& path) const override {
        Descriptor descriptor(openDescriptor(path, O_RDONLY | O_DIRECTORY));
        const std::unique_ptr<DIR, int (*)(DIR*)> directory(
            descriptor.isValid() ? ::fdopendir(descriptor.number()) : nullptr, &::closedir);
        if (!directory)
            throw FileError(FileOperation::list, path, errno);
        descriptor.release();
        std::vector<DirectoryEntry> entries;
        for (;;) {
            errno = 0;
            const auto* entry = ::readdir(directory.get());
            if (entry == nullptr)
                break;
            std::string name = entry->d_name;
            if (name != "." && name != "..")
                entries.push_back({name, kindOf(directory.get(), *entry)});
        }
        if (errno != 0)
            throw FileError(FileOperation::list, path, errno);
        return entries;
    }

    void createDirectory(const fs::path& path) const override {
        std::error_code code;
        // The parent usually exists; create_directories() would check it first.
        if (fs::create_directory(path, code); code)
            fs::create_directories(path, code);
        if (code)
            throw FileError(FileOperation::createFolder, path, code);
    }

    void removeItem(const fs::path& path) const override {
        // Files are removed without remove_all(), which allocates memory.
        if (::unlink(path.c_str()) == 0)
            return;
        std::error_code code;
        do {
            fs::remove_all(path, code);
        } while (code == std::errc::interrupted);
        if (code)
            throw FileError(FileOperation::remove, path, code);
    }

    void replaceItem(const fs::path& destination, const fs::path& source) const override {
        if (::rename(source.c_str(), destination.c_str()) != 0)
            throw FileError(FileOperation::replace, destination, errno);
    }

    std::unique_ptr<File> open(const fs::path& path, OpenMode mode) const override {
        switch (mode) {
        case OpenMode::read: {
            auto [descriptor, size] = openRegular(path);
            return std::make_unique<SystemFile>(path, std::move(descriptor), size);
        }
        case OpenMode::create:
            return std::make_unique<SystemFile>(path, openNew(path, O_TRUNC));
        case OpenMode::createUnique:
            break;
        }
        return std::make_unique<SystemFile>(path, openNew(path, O_EXCL));
    }

    bool flushDirectory(const fs::path& path) const override {
        const Descriptor descriptor(openDescriptor(path, O_RDONLY | O_DIRECTORY));
        if (!descriptor.isValid())
            return false;
        if (fsyncDescriptor(descriptor))
            return true;
        if (errno == EINVAL)
            return false;
        throw FileError(FileOperation::flush, path, errno);
    }

    void flushVolume(const fs::path& path) const override {
        const Descriptor descriptor(openDescriptor(path, O_RDONLY));
        if (!descriptor.isValid() ||
            retryOnInterrupt([&] { return ::syncfs(descriptor.number()); }) != 0)
            throw FileError(FileOperation::flush, path, errno);
        // FUSE file systems do not see syncfs(); they do see fsync(). A file system that cannot
        // flush a folder refuses with EINVAL.
        if (!fsyncDescriptor(descriptor) && errno != EINVAL)
            throw FileError(FileOperation::flush, path, errno);
    }

    bool volumeFlushCoversFiles(const fs::path& folder) const override {
        // Network and FUSE file systems are missing: some ignore syncfs().
        constexpr std::array<std::uint32_t, 7> types{
            EXT4_SUPER_MAGIC,  XFS_SUPER_MAGIC,   BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC,
            MSDOS_SUPER_MAGIC, EXFAT_SUPER_MAGIC, TMPFS_MAGIC};
        const auto type = fileSystemType(folder);
        return type && std::ranges::find(types, *type) != types.end();
    }

    std::unique_ptr<FolderLock> lockFolder(const fs::path& folder) const override {
        Descriptor descriptor(openDescriptor(folder, O_RDONLY | O_DIRECTORY));
        if (!descriptor.isValid() || ::flock(descriptor.number(), LOCK_EX | LOCK_NB) != 0)
            throw FileError(FileOperation::lock, folder, errno);
        return std::make_unique<SystemFolderLock>(std::move(descriptor));
    }

    std::optional<std::uint64_t> availableSpace(const fs::path& folder) const override {
        struct statvfs details {};
        // Some network file systems report 0 blocks.
        if (::statvfs(folder.c_str(), &details) != 0 || details.f_blocks == 0 ||
            mayStoreLessThanSize(folder))
            return std::nullopt;
        // Only the superuser may use the reserved blocks.
        const std::uint64_t blocks = ::geteuid() == 0 ? details.f_bfree : details.f_bavail;
        return blocks * details.f_frsize;
    }

    bool isMountPoint(const fs::path& folder) const override {
        struct statx details {};
        if (::statx(AT_FDCWD, folder.c_str(), 0, 0, &details) != 0)
            throw FileError(FileOperation::inspect, folder, errno);
        return (details.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    }

private:
    /// Some file systems return DT_UNKNOWN; the type is then read with fstatat().
    static FileKind kindOf(DIR* directory, const dirent& entry) {
        switch (entry.d_type) {
        case DT_REG:
            return FileKind::regular;
        case DT_DIR:
            return FileKind::directory;
        case DT_LNK:
            return FileKind::symbolicLink;
        case DT_UNKNOWN: {
            struct stat details {};
            if (::fstatat(::dirfd(directory), entry.d_name, &details, AT_SYMLINK_NOFOLLOW) == 0)
                return torvo::kindOf(details.st_mode);
            return FileKind::regular;
        }
        default:
            return FileKind::other;
        }
    }
};

} // namespace

std::shared_ptr<const FileManager> systemFileManager() {
    static const auto shared = std::make_shared<const SystemFileManager>();
    return shared;
}

} // namespace torvo
