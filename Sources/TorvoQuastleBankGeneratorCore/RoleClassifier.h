#pragma once

#include "Models/GenerationMode.h"

#include <optional>
#include <string>
#include <string_view>

namespace torvo {

/// The words of a name, lower-cased, joined by single spaces: "Closed_HiHat-01 (Dry)" becomes
/// "closed hihat 01 dry". Every character that is not alphanumeric separates words.
std::string normalize(std::string_view text);

/// The drum role that the words of a folder's or file's name give, or none.
std::optional<ChannelRole> classifyRole(std::string_view text);

/// Whether a folder of this name is left out of a drum scan with everything below it.
bool namesIgnoredFolder(std::string_view text);

} // namespace torvo
