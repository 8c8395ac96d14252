#pragma once

#include <string_view>

namespace torvo {

/// Ends the process with `violated` on standard error when `condition` is false. For broken
/// promises between pieces of the program; input from outside is answered with an error.
void precondition(bool condition, std::string_view violated);

} // namespace torvo
