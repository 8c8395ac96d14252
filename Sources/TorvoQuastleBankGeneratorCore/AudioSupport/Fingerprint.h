#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace torvo {

/// A fast 64-bit hash that tells whether bytes read back are the bytes that were written. It is no
/// guard against forgery.
class Fingerprint {
public:
    /// All parts but the last have a length that is a multiple of eight.
    void add(std::span<const std::byte> bytes) {
        for (; bytes.size() >= sizeof(std::uint64_t); bytes = bytes.subspan(sizeof(std::uint64_t)))
            addWord(bytes.first(sizeof(std::uint64_t)));
        if (!bytes.empty())
            addWord(bytes);
    }

    friend bool operator==(const Fingerprint&, const Fingerprint&) = default;

private:
    void addWord(std::span<const std::byte> bytes) {
        constexpr std::uint64_t oddMultiplier = 0x9E3779B97F4A7C15;
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data(), bytes.size());
        state_ = (std::rotl(state_, 27) ^ word) * oddMultiplier;
    }

    std::uint64_t state_ = 1;
};

} // namespace torvo
