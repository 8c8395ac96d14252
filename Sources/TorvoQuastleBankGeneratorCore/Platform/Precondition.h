#pragma once

#include <string_view>

namespace torvo {

/// Prints `violated` to standard error and aborts the process when `condition` is false. Use it for
/// programming errors only; invalid input is reported with an exception.
void precondition(bool condition, std::string_view violated);

} // namespace torvo
