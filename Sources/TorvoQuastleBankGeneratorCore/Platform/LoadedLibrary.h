#pragma once

#include <filesystem>
#include <stdexcept>

namespace torvo {

/// A part of the program is missing or does not fit the rest.
class BrokenInstallation final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where a library of the program itself lies: `relative` to the folder of the running program.
/// Throws `BrokenInstallation`.
std::filesystem::path installedLibrary(const std::filesystem::path& relative);

/// Loads a library, once and for good, and finds what it exports. Throws `BrokenInstallation`.
void* symbolOfLibrary(const std::filesystem::path& library, const char* name);

} // namespace torvo
