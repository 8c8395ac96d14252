#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace torvo::test {

void append(std::vector<std::byte>& to, std::span<const std::byte> bytes);
void append(std::vector<std::byte>& to, std::string_view text);

/// Appends the lowest `byteCount` bytes of a number in little-endian order.
void appendLittleEndian(std::vector<std::byte>& to, std::uint64_t value, std::size_t byteCount);
/// Like `appendLittleEndian`, in big-endian order.
void appendBigEndian(std::vector<std::byte>& to, std::uint64_t value, std::size_t byteCount);

/// In little-endian order, as WAV files have them.
void appendUInt16(std::vector<std::byte>& to, std::uint16_t value);
void appendUInt32(std::vector<std::byte>& to, std::uint32_t value);
void appendSamples(std::vector<std::byte>& to, std::span<const std::int16_t> samples);
void appendBigEndianSamples(std::vector<std::byte>& to, std::span<const std::int16_t> samples);

} // namespace torvo::test
