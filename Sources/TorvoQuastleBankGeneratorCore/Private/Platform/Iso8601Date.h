#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace torvo {

/// Formats a time as ISO 8601 in UTC: "2026-03-01T14:05:09Z".
std::string iso8601(std::chrono::sys_seconds time);

/// Parses that form, or the same with a UTC offset ("+01:00") instead of "Z". Empty for anything
/// else, including fractional seconds.
std::optional<std::chrono::sys_seconds> iso8601Date(std::string_view text);

} // namespace torvo
