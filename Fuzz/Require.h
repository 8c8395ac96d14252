#pragma once

#include <cstdio>
#include <cstdlib>

namespace torvo::fuzz {

/// Aborts the process, so that libFuzzer keeps the input.
inline void require(bool condition, const char* promise) {
    if (condition)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

} // namespace torvo::fuzz
