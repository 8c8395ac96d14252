#pragma once

#include <exception>
#include <filesystem>
#include <optional>
#include <string>

namespace torvo {

/// Base class of the errors that have a text for the user.
class Error : public std::exception {
public:
    /// One sentence for the user.
    virtual std::string userFacingDescription() const = 0;
    /// The file that caused the failure, if known.
    virtual std::optional<std::filesystem::path> file() const { return std::nullopt; }
};

} // namespace torvo
