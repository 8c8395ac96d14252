#include "ProcessResources.h"

#include <filesystem>
#include <malloc.h>

namespace torvo::test {

namespace {

std::ptrdiff_t entryCount(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

} // namespace

ProcessResources processResources() {
    return {entryCount("/proc/self/fd"), entryCount("/proc/self/task"), ::mallinfo2().uordblks};
}

} // namespace torvo::test
