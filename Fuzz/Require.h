#pragma once

#include <cstdio>
#include <cstdlib>

namespace torvo::fuzz {

/// Ends the process as a crash does, so that the fuzzer keeps the input.
inline void require(bool condition, const char* promise) {
    if (condition)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

} // namespace torvo::fuzz
