#pragma once

#include <cstddef>

namespace torvo::test {

/// The system resources in use by this process.
struct ProcessResources {
    std::ptrdiff_t openFiles = 0;
    std::ptrdiff_t threads = 0;
    std::size_t heapBytes = 0; ///< in use; means nothing under a sanitizer's own heap
};

ProcessResources processResources();

} // namespace torvo::test
