#include "Baselines.h"

#include "../OnThreads.h"
#include "../Stopwatch.h"
#include "BareConversion.h"
#include "SeededGenerator.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <numeric>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace torvo::bench {

namespace fs = std::filesystem;

namespace {

void require(bool succeeded, const fs::path& path) {
    if (!succeeded)
        throw std::system_error(errno, std::generic_category(), path.string());
}

/// The wall time of `onThreads`.
template <typename Work>
double secondsFor(std::span<const fs::path> files, std::size_t threads, std::size_t atOnce,
                  Work work) {
    const Stopwatch watch;
    onThreads(files, threads, atOnce, work);
    return watch.seconds();
}

void readHead(const fs::path& path) {
    std::array<std::byte, 4096> head;
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    require(file >= 0, path);
    require(::read(file, head.data(), head.size()) >= 0, path);
    ::close(file);
}

void readWhole(const fs::path& path) {
    std::vector<std::byte> block(std::size_t{256} * 1024);
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    require(file >= 0, path);
    ssize_t count = 0;
    while ((count = ::read(file, block.data(), block.size())) > 0) {
    }
    require(count == 0, path);
    ::close(file);
}

void rewrite(const fs::path& path) {
    const int source = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    require(source >= 0, path);
    struct stat details {};
    require(::fstat(source, &details) == 0, path);
    std::vector<std::byte> bytes(static_cast<std::size_t>(details.st_size));
    require(::read(source, bytes.data(), bytes.size()) == details.st_size, path);
    ::close(source);

    const auto beside = path.parent_path() / ".beside";
    const int target =
        ::open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, details.st_mode & 0777);
    require(target >= 0, beside);
    require(::write(target, bytes.data(), bytes.size()) == details.st_size, beside);
    require(::fsync(target) == 0, beside);
    require(::close(target) == 0, beside);
    require(::rename(beside.c_str(), path.c_str()) == 0, beside);
}

} // namespace

double secondsToReadHeads(std::span<const fs::path> files, std::size_t threads) {
    return secondsFor(files, threads, 16, readHead);
}

double secondsToRead(std::span<const fs::path> files) {
    return secondsFor(files, 1, 1, readWhole);
}

double secondsToRewrite(std::span<const fs::path> files) {
    return secondsFor(files, 1, 1, rewrite);
}

double secondsToShuffle(std::size_t count) {
    const Stopwatch watch;
    std::vector<std::uintptr_t> items(count);
    std::iota(items.begin(), items.end(), std::uintptr_t{0});
    SeededGenerator(42).shuffle(items);
    return watch.seconds();
}

double secondsToConvert(std::span<const fs::path> files, std::size_t threads) {
    return secondsFor(files, threads, 1, [](const fs::path& file) { bareConversion(file); });
}

} // namespace torvo::bench
