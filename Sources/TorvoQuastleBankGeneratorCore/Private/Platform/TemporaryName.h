#pragma once

#include <string>
#include <string_view>

namespace torvo {

/// A random name for a temporary file that later replaces another file. It begins with a dot, so
/// that the device and the scanner ignore the file, and has a fixed short length, so that it is
/// valid even when the other file's name has the maximum length.
std::string temporaryName();

/// Whether `name` has the form that `temporaryName` returns.
bool isTemporaryName(std::string_view name);

} // namespace torvo
