// slow-files FOLDER MOUNT-POINT --delay MILLISECONDS: shows a folder through FUSE, like a server
// that is this far away. Every opening and every reading of a file or a folder is answered after
// the delay; any number of requests are answered at the same time. Read-only. slow-files FOLDER
// MOUNT-POINT --rate MEGABYTES-PER-SECOND: shows it like a memory card, which reads and writes one
// block after the other. Ends when the program that started it ends, or with a signal.

#define FUSE_USE_VERSION 312
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fuse.h>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

/// Lets bytes pass one after the other.
class Throttle {
public:
    explicit Throttle(unsigned megabytesPerSecond)
        : secondsPerByte_(megabytesPerSecond == 0 ? 0 : 1e-6 / megabytesPerSecond) {}

    void pass(ssize_t byteCount) {
        if (secondsPerByte_ == 0 || byteCount <= 0)
            return;
        const std::chrono::duration<double> needed(static_cast<double>(byteCount) *
                                                   secondsPerByte_);
        std::unique_lock lock(mutex_);
        free_ = std::max(free_, Clock::now()) + std::chrono::duration_cast<Clock::duration>(needed);
        const auto end = free_;
        lock.unlock();
        std::this_thread::sleep_until(end);
    }

private:
    double secondsPerByte_; ///< 0 for no limit
    std::mutex mutex_;
    Clock::time_point free_;
};

struct Server {
    std::string folder;
    std::chrono::milliseconds delay;
    Throttle throttle;
    bool isCard; ///< writable, and the kernel keeps what it has read
};

Server& server() {
    return *static_cast<Server*>(fuse_get_context()->private_data);
}

std::string realPath(const char* path) {
    return server().folder + path;
}

void travel() {
    std::this_thread::sleep_for(server().delay);
}

void* init(fuse_conn_info* connection, fuse_config* config) {
    config->kernel_cache = server().isCard ? 1 : 0; // 0: every open file is read from here
    config->entry_timeout = config->attr_timeout = 3600;
    config->nullpath_ok = 1;
    connection->max_background = 256; // the kernel's read-ahead; 12 by default
    return fuse_get_context()->private_data;
}

int resultOf(ssize_t result) {
    return result >= 0 ? static_cast<int>(result) : -errno;
}

int descriptorOf(const fuse_file_info* file) {
    return static_cast<int>(file->fh);
}

int getattr(const char* path, struct stat* details, fuse_file_info* file) {
    return resultOf(file != nullptr ? ::fstat(descriptorOf(file), details)
                                    : ::lstat(realPath(path).c_str(), details));
}

int openedAs(int descriptor, fuse_file_info* file) {
    file->fh = static_cast<std::uint64_t>(descriptor);
    return descriptor >= 0 ? 0 : -errno;
}

int open(const char* path, fuse_file_info* file) {
    travel();
    return openedAs(
        ::open(realPath(path).c_str(), (file->flags & (O_ACCMODE | O_TRUNC)) | O_CLOEXEC), file);
}

int create(const char* path, mode_t mode, fuse_file_info* file) {
    return openedAs(::open(realPath(path).c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode),
                    file);
}

int read(const char*, char* bytes, std::size_t size, off_t offset, fuse_file_info* file) {
    travel();
    const auto count = ::pread(descriptorOf(file), bytes, size, offset);
    server().throttle.pass(count);
    return resultOf(count);
}

int write(const char*, const char* bytes, std::size_t size, off_t offset, fuse_file_info* file) {
    const auto count = ::pwrite(descriptorOf(file), bytes, size, offset);
    server().throttle.pass(count);
    return resultOf(count);
}

int truncate(const char* path, off_t size, fuse_file_info* file) {
    return resultOf(file != nullptr ? ::ftruncate(descriptorOf(file), size)
                                    : ::truncate(realPath(path).c_str(), size));
}

int makeFolder(const char* path, mode_t mode) {
    return resultOf(::mkdir(realPath(path).c_str(), mode));
}

int release(const char*, fuse_file_info* file) {
    ::close(descriptorOf(file));
    return 0;
}

int openFolder(const char* path, fuse_file_info* file) {
    travel();
    auto* const folder = ::opendir(realPath(path).c_str());
    file->fh = reinterpret_cast<std::uintptr_t>(folder);
    return folder != nullptr ? 0 : -errno;
}

DIR* folderOf(const fuse_file_info* file) {
    return reinterpret_cast<DIR*>(static_cast<std::uintptr_t>(file->fh));
}

int readFolder(const char*, void* buffer, fuse_fill_dir_t fill, off_t offset, fuse_file_info* file,
               fuse_readdir_flags) {
    travel();
    auto* const folder = folderOf(file);
    ::seekdir(folder, offset);
    while (const auto* entry = ::readdir(folder)) {
        struct stat details {};
        details.st_ino = entry->d_ino;
        details.st_mode = static_cast<mode_t>(DTTOIF(entry->d_type));
        if (fill(buffer, entry->d_name, &details, ::telldir(folder), fuse_fill_dir_flags{}) != 0)
            break;
    }
    return 0;
}

int releaseFolder(const char*, fuse_file_info* file) {
    ::closedir(folderOf(file));
    return 0;
}

fuse_operations operations() {
    fuse_operations all{};
    all.init = init;
    all.getattr = getattr;
    all.open = open;
    all.create = create;
    all.read = read;
    all.write = write;
    all.truncate = truncate;
    all.mkdir = makeFolder;
    all.release = release;
    all.opendir = openFolder;
    all.readdir = readFolder;
    all.releasedir = releaseFolder;
    return all;
}

bool serve(Server& served, const char* program, const char* mountPoint) {
    std::string name = program;
    std::string option = "-o";
    std::string options = served.isCard ? "fsname=slow-files" : "ro,fsname=slow-files";
    char* arguments[] = {name.data(), option.data(), options.data(), nullptr};
    fuse_args args = FUSE_ARGS_INIT(3, arguments);
    const auto all = operations();
    const std::unique_ptr<fuse, decltype(&fuse_destroy)> mounted(
        fuse_new(&args, &all, sizeof all, &served), &fuse_destroy);
    if (!mounted || fuse_mount(mounted.get(), mountPoint) != 0)
        return false;
    const std::unique_ptr<fuse_loop_config, decltype(&fuse_loop_cfg_destroy)> loop(
        fuse_loop_cfg_create(), &fuse_loop_cfg_destroy);
    constexpr unsigned maxThreads = 128;
    fuse_loop_cfg_set_max_threads(loop.get(), maxThreads);
    fuse_loop_cfg_set_idle_threads(loop.get(), maxThreads);
    auto* const session = fuse_get_session(mounted.get());
    fuse_set_signal_handlers(session);
    fuse_loop_mt(mounted.get(), loop.get());
    fuse_remove_signal_handlers(session);
    fuse_unmount(mounted.get());
    fuse_opt_free_args(&args);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    unsigned value = 0;
    const std::string_view option = argc == 5 ? argv[3] : "";
    const std::string_view number = argc == 5 ? argv[4] : "";
    const bool isCard = option == "--rate";
    if (std::from_chars(number.data(), number.data() + number.size(), value).ec != std::errc() ||
        (!isCard && option != "--delay")) {
        std::cerr << "slow-files FOLDER MOUNT-POINT --delay MILLISECONDS\n"
                     "slow-files FOLDER MOUNT-POINT --rate MEGABYTES-PER-SECOND"
                  << std::endl;
        return 2;
    }
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    Server served{argv[1], std::chrono::milliseconds(isCard ? 0 : value),
                  Throttle(isCard ? value : 0), isCard};
    return serve(served, argv[0], argv[2]) ? 0 : 1;
}
