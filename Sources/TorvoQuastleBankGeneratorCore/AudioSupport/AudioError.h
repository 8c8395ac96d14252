#pragma once

#include <exception>

namespace torvo {

/// Why bytes cannot be read as audio: the media library's status, or a negated `errno`.
class AudioError final : public std::exception {
public:
    explicit AudioError(int status) : status_(status) {}
    /// The bytes are not what they claim to be, or nothing that is read here.
    static AudioError invalidData() { return AudioError(invalidDataStatus); }

    int status() const { return status_; }
    const char* what() const noexcept override { return "unreadable audio"; }

    /// The media library's own, "INDA" read as a number, negated.
    static constexpr int invalidDataStatus = -0x41444e49;

private:
    int status_;
};

} // namespace torvo
