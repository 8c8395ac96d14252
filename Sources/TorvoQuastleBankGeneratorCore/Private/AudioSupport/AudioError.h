#pragma once

#include <exception>

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

} // namespace torvo
