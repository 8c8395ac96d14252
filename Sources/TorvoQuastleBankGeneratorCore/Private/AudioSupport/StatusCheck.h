#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace torvo {

/// Converts the exception being handled to `GenerationError::exportFailed` with `message`, its
/// status (an FFmpeg error code or a negated `errno`) and `file`. Rethrows exceptions without a
/// status. Must be called from a catch block.
[[noreturn]] void throwWithStatus(std::string_view message, const std::filesystem::path& file);

/// Runs one step of a conversion and reports its failure with `message`, as `throwWithStatus` does.
/// `file` is the file that the step reads or writes.
template <typename Step>
void withStatus(std::string_view message, const std::filesystem::path& file, Step step) {
    try {
        step();
    } catch (...) {
        throwWithStatus(message, file);
    }
}

} // namespace torvo
