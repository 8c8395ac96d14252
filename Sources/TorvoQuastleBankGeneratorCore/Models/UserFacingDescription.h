#pragma once

#include <exception>
#include <string>

namespace torvo {

/// What the user reads of any failure: one plain sentence.
std::string userFacingDescription(const std::exception& error);
std::string userFacingDescription(const std::exception_ptr& error);

} // namespace torvo
