#pragma once

#include "Platform/Error.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace torvo {

/// The operation that failed.
enum class FileOperation {
    read,
    write,
    list,
    createFolder,
    remove,
    copy,
    replace,
    flush,
    inspect,
    lock,
};

/// A file system error with its path and system error code.
class FileError final : public Error {
public:
    FileError(FileOperation operation, std::filesystem::path path, std::error_code code);
    /// `errorNumber` is a value of `errno`.
    FileError(FileOperation operation, std::filesystem::path path, int errorNumber);

    FileOperation operation() const { return operation_; }
    const std::filesystem::path& path() const { return path_; }
    const std::error_code& code() const { return code_; }

    /// One sentence, for example "Unable to write /card/Kit/QZT508/Bank 1/info.txt: No space left
    /// on device."
    std::string errorDescription() const { return description_; }
    std::string userFacingDescription() const override { return description_; }
    std::optional<std::filesystem::path> file() const override { return path_; }
    const char* what() const noexcept override { return description_.c_str(); }

private:
    FileOperation operation_;
    std::filesystem::path path_;
    std::error_code code_;
    std::string description_;
};

} // namespace torvo
