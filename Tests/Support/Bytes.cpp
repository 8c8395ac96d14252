#include "Bytes.h"

namespace torvo::test {

void append(std::vector<std::byte>& to, std::span<const std::byte> bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

void append(std::vector<std::byte>& to, std::string_view text) {
    append(to, std::as_bytes(std::span(text)));
}

void appendLittleEndian(std::vector<std::byte>& to, std::uint64_t value, std::size_t byteCount) {
    for (std::size_t i = 0; i < byteCount; ++i)
        to.push_back(static_cast<std::byte>(value >> (8 * i)));
}

void appendBigEndian(std::vector<std::byte>& to, std::uint64_t value, std::size_t byteCount) {
    for (std::size_t i = byteCount; i-- > 0;)
        to.push_back(static_cast<std::byte>(value >> (8 * i)));
}

void appendUInt16(std::vector<std::byte>& to, std::uint16_t value) {
    appendLittleEndian(to, value, 2);
}

void appendUInt32(std::vector<std::byte>& to, std::uint32_t value) {
    appendLittleEndian(to, value, 4);
}

void appendSamples(std::vector<std::byte>& to, std::span<const std::int16_t> samples) {
    for (const std::int16_t sample : samples)
        appendLittleEndian(to, static_cast<std::uint16_t>(sample), 2);
}

void appendBigEndianSamples(std::vector<std::byte>& to, std::span<const std::int16_t> samples) {
    for (const std::int16_t sample : samples)
        appendBigEndian(to, static_cast<std::uint16_t>(sample), 2);
}

} // namespace torvo::test
