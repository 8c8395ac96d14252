#pragma once

#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace torvo {

/// A part of the program is missing or does not fit the rest.
class BrokenInstallation final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where a library of the program itself lies: `relative` to the folder of the running program.
/// Throws `BrokenInstallation`.
std::filesystem::path installedLibrary(const std::filesystem::path& relative);

/// Loads a shared library, which is never unloaded, and returns the address of its symbol `name`.
/// The library exports a function `stampName` returning a C string, which must equal `stamp`: a
/// package upgrade may replace the file while the program runs, and the new library may have
/// another interface. Throws `BrokenInstallation`.
void* symbolOfLibrary(const std::filesystem::path& library, const char* name, const char* stampName,
                      std::string_view stamp);

} // namespace torvo
