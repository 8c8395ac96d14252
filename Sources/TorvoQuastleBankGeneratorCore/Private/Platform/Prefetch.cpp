#include "Platform/Prefetch.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace torvo {

namespace {

std::uint64_t prefetchDescriptor(int descriptor, std::uint64_t maxSize) {
    struct stat file {};
    if (::fstat(descriptor, &file) != 0 || !S_ISREG(file.st_mode))
        return 0;
    const auto size = std::min(static_cast<std::uint64_t>(file.st_size), maxSize);
    // posix_fadvise() takes a length of 0 for the whole file.
    if (size == 0 ||
        ::posix_fadvise(descriptor, 0, static_cast<off_t>(size), POSIX_FADV_WILLNEED) != 0)
        return 0;
    return size;
}

} // namespace

bool areOnTwoVolumes(const std::filesystem::path& item,
                     const std::filesystem::path& otherItem) noexcept {
    struct stat status {};
    struct stat otherStatus {};
    return ::stat(item.c_str(), &status) == 0 && ::stat(otherItem.c_str(), &otherStatus) == 0 &&
           status.st_dev != otherStatus.st_dev;
}

std::uint64_t prefetch(const std::filesystem::path& file, std::uint64_t maxSize) noexcept {
    // O_NONBLOCK keeps open() from blocking on a named pipe.
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return 0;
    const auto size = prefetchDescriptor(descriptor, maxSize);
    ::close(descriptor);
    return size;
}

} // namespace torvo
