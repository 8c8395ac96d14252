#pragma once

#include <exception>
#include <filesystem>
#include <string_view>

namespace torvo {

/// A file cannot be read as audio. `status` is an FFmpeg error code or a negated `errno`.
class AudioError final : public std::exception {
public:
    explicit AudioError(int status) : status_(status) {}
    /// The data is invalid or in an unsupported format.
    static AudioError invalidData() { return AudioError(invalidDataStatus); }

    int status() const { return status_; }
    const char* what() const noexcept override { return "unreadable audio"; }

    /// FFmpeg's AVERROR_INVALIDDATA: "INDA" as a little-endian number, negated.
    static constexpr int invalidDataStatus = -0x41444e49;

private:
    int status_;
};

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
