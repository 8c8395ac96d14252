#pragma once

#include "Models/GenerationMode.h"

#include <optional>
#include <string>
#include <string_view>

namespace torvo {

/// Converts a name to lower-case words joined by single spaces: "Closed_HiHat-01 (Dry)" becomes
/// "closed hihat 01 dry". Every non-alphanumeric character separates words.
std::string normalize(std::string_view text);

/// The drum role that a folder or file name contains. Empty when it contains none.
std::optional<ChannelRole> classifyRole(std::string_view text);

/// Whether a drum scan skips a folder of this name and everything below it.
bool namesIgnoredFolder(std::string_view text);

} // namespace torvo
