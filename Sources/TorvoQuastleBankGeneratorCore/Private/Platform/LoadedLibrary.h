#pragma once

#include "Platform/Error.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace torvo {

/// A library of the program is missing or belongs to another build.
class BrokenInstallation final : public Error {
public:
    explicit BrokenInstallation(std::string description) : description_(std::move(description)) {}

    std::string userFacingDescription() const override { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

private:
    std::string description_;
};

/// The path of a library installed with the program; `relative` is relative to the folder of the
/// running executable. Throws `BrokenInstallation`.
std::filesystem::path installedLibrary(const std::filesystem::path& relative);

/// Loads a shared library, which is never unloaded, and returns the address of its symbol `name`.
/// The library exports a function `stampName` returning a C string, which must equal `stamp`: a
/// package upgrade may replace the file while the program runs, and the new library may have
/// another interface. Throws `BrokenInstallation`.
void* symbolOfLibrary(const std::filesystem::path& library, const char* name, const char* stampName,
                      std::string_view stamp);

} // namespace torvo
