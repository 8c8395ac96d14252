#pragma once

#include "Models/GenerationMode.h"
#include "Platform/Error.h"
#include "Platform/FileURL.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

namespace torvo {

/// A failed scan, generation or export. File system errors are `FileError`, and errors in mapping
/// documents are `DecodingError`.
class GenerationError final : public Error {
public:
    struct RequiredRoleMissing {
        ChannelRole role;
        friend bool operator==(const RequiredRoleMissing&, const RequiredRoleMissing&) = default;
    };
    /// `found` is the number of usable samples; the description contains the required number.
    struct InsufficientPercussion {
        std::int64_t found;
        friend bool operator==(const InsufficientPercussion&,
                               const InsufficientPercussion&) = default;
    };
    struct InsufficientLoops {
        std::int64_t found;
        friend bool operator==(const InsufficientLoops&, const InsufficientLoops&) = default;
    };
    struct InsufficientStabs {
        std::int64_t found;
        friend bool operator==(const InsufficientStabs&, const InsufficientStabs&) = default;
    };
    struct UnsupportedAudio {
        FileURL url;
        friend bool operator==(const UnsupportedAudio&, const UnsupportedAudio&) = default;
    };
    /// `message` is the complete description.
    struct ExportFailed {
        std::string message;
        friend bool operator==(const ExportFailed&, const ExportFailed&) = default;
    };
    struct NoRecipesGenerated {
        friend bool operator==(const NoRecipesGenerated&, const NoRecipesGenerated&) = default;
    };
    using Case =
        std::variant<RequiredRoleMissing, InsufficientPercussion, InsufficientLoops,
                     InsufficientStabs, UnsupportedAudio, ExportFailed, NoRecipesGenerated>;

    static GenerationError requiredRoleMissing(ChannelRole role);
    static GenerationError insufficientPercussion(std::int64_t found);
    static GenerationError insufficientLoops(std::int64_t found);
    static GenerationError insufficientStabs(std::int64_t found);
    static GenerationError unsupportedAudio(const FileURL& url);
    static GenerationError exportFailed(std::string message);
    static GenerationError noRecipesGenerated();

    const Case& value() const { return value_; }
    /// The text for the user.
    const std::string& errorDescription() const { return description_; }
    std::string userFacingDescription() const override { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

    /// The source file when reading failed, the destination file when writing failed. Ignored by
    /// operator==.
    std::optional<std::filesystem::path> file() const override { return file_; }
    /// The same error with this file, unless it already has one.
    GenerationError withFile(std::filesystem::path file) const;

    friend bool operator==(const GenerationError& left, const GenerationError& right) {
        return left.value_ == right.value_;
    }

private:
    explicit GenerationError(Case value);

    Case value_;
    std::string description_;
    std::optional<std::filesystem::path> file_;
};

/// Runs `step` and adds `file` to a `GenerationError` that it throws.
template <typename Step>
void withFileInErrors(const std::filesystem::path& file, Step step) {
    try {
        step();
    } catch (const GenerationError& error) {
        throw error.withFile(file);
    }
}

} // namespace torvo
