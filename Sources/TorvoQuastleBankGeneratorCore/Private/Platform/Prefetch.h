#pragma once

#include <cstdint>
#include <filesystem>

namespace torvo {

/// Whether both items exist, on two volumes.
bool areOnTwoVolumes(const std::filesystem::path& item,
                     const std::filesystem::path& otherItem) noexcept;

/// Asks the operating system to read the beginning of a regular file, at most `maxSize` bytes, into
/// its page cache and does not wait for it. Returns the number of bytes; 0 when the file cannot be
/// opened: whoever needs the file meets the error again and reports it.
std::uint64_t prefetch(const std::filesystem::path& file, std::uint64_t maxSize) noexcept;

} // namespace torvo
