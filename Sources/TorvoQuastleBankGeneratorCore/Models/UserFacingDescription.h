#pragma once

#include <exception>
#include <filesystem>
#include <optional>
#include <string>

namespace torvo {

/// Describes any exception to the user in one sentence.
std::string userFacingDescription(const std::exception& error);
std::string userFacingDescription(const std::exception_ptr& error);

/// The file that caused the failure, to be shown below the description. Empty when the file is
/// unknown or the description already contains its full path.
std::optional<std::filesystem::path> failedFile(const std::exception& error);
std::optional<std::filesystem::path> failedFile(const std::exception_ptr& error);

} // namespace torvo
