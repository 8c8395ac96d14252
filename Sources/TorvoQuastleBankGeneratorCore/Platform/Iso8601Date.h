#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace torvo {

/// "2026-03-01T14:05:09Z" (ISO 8601, in UTC).
std::string iso8601(std::chrono::sys_seconds time);

/// The same read, or with an offset from UTC in the place of the Z. None for anything else; seconds
/// are whole.
std::optional<std::chrono::sys_seconds> iso8601Date(std::string_view text);

} // namespace torvo
