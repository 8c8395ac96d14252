// slow-files FOLDER MOUNT-POINT MILLISECONDS: shows a folder through FUSE, like a server that is
// this far away. Every opening and every reading of a file or a folder is answered after the delay;
// any number of requests are answered at the same time. Ends when the program that started it ends,
// or with a signal.

#define FUSE_USE_VERSION 312
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
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

struct Server {
    std::string folder;
    std::chrono::milliseconds delay;
};

const Server& server() {
    return *static_cast<const Server*>(fuse_get_context()->private_data);
}

std::string realPath(const char* path) {
    return server().folder + path;
}

void travel() {
    std::this_thread::sleep_for(server().delay);
}

void* init(fuse_conn_info* connection, fuse_config* config) {
    config->kernel_cache = 0; // every open file is read from here
    config->entry_timeout = config->attr_timeout = 3600;
    config->nullpath_ok = 1;
    connection->max_background = 256; // the kernel's read-ahead; 12 by default
    return fuse_get_context()->private_data;
}

int getattr(const char* path, struct stat* details, fuse_file_info* file) {
    const int result = file != nullptr ? ::fstat(static_cast<int>(file->fh), details)
                                       : ::lstat(realPath(path).c_str(), details);
    return result == 0 ? 0 : -errno;
}

int open(const char* path, fuse_file_info* file) {
    travel();
    const int descriptor = ::open(realPath(path).c_str(), O_RDONLY | O_CLOEXEC);
    file->fh = static_cast<std::uint64_t>(descriptor);
    return descriptor >= 0 ? 0 : -errno;
}

int read(const char*, char* bytes, std::size_t size, off_t offset, fuse_file_info* file) {
    travel();
    const auto count = ::pread(static_cast<int>(file->fh), bytes, size, offset);
    return count >= 0 ? static_cast<int>(count) : -errno;
}

int release(const char*, fuse_file_info* file) {
    ::close(static_cast<int>(file->fh));
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
    all.read = read;
    all.release = release;
    all.opendir = openFolder;
    all.readdir = readFolder;
    all.releasedir = releaseFolder;
    return all;
}

bool serve(Server& served, const char* program, const char* mountPoint) {
    std::string name = program;
    std::string option = "-o";
    std::string options = "ro,fsname=slow-files";
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
    unsigned delay = 0;
    const std::string_view number = argc == 4 ? argv[3] : "";
    if (std::from_chars(number.data(), number.data() + number.size(), delay).ec != std::errc()) {
        std::cerr << "slow-files FOLDER MOUNT-POINT MILLISECONDS" << std::endl;
        return 2;
    }
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    Server served{argv[1], std::chrono::milliseconds(delay)};
    return serve(served, argv[0], argv[2]) ? 0 : 1;
}
