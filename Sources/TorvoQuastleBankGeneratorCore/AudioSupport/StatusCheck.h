#pragma once

#include <string>
#include <string_view>

namespace torvo {

/// Throws `GenerationError::exportFailed` for the failure being handled: the message, then the
/// status behind it (the media library's, or a negated `errno`). Failures that carry no status
/// pass.
[[noreturn]] void throwWithStatus(std::string_view message);

/// Runs one step of a conversion under its message.
template <typename Step>
void checkingStatus(std::string_view message, Step step) {
    try {
        step();
    } catch (...) {
        throwWithStatus(message);
    }
}

} // namespace torvo
