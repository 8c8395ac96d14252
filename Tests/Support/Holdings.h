#pragma once

#include <cstddef>

namespace torvo::test {

/// What this process holds of the system's means.
struct Holdings {
    std::ptrdiff_t openFiles = 0;
    std::ptrdiff_t threads = 0;
    std::size_t heapBytes = 0; ///< in use; means nothing under a sanitizer's own heap
};

Holdings holdings();

} // namespace torvo::test
