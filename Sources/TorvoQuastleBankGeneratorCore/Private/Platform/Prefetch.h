#pragma once

#include <cstdint>
#include <filesystem>

namespace torvo {

/// Asks the operating system to read the beginning of a regular file, at most `maxSize` bytes, into
/// its page cache and does not wait for it. Returns the number of bytes; 0 when the file is on the
/// volume of the folder `destination`, where a copy may share its blocks and read nothing, and when
/// it cannot be opened: whoever needs the file meets the error again and reports it.
std::uint64_t prefetch(const std::filesystem::path& file, const std::filesystem::path& destination,
                       std::uint64_t maxSize) noexcept;

} // namespace torvo
