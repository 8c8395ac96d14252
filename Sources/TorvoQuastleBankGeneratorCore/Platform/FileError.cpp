#include "Platform/FileError.h"

#include "Platform/UnicodeText.h"

#include <string_view>

namespace torvo {

namespace {

std::string_view verb(FileOperation operation) {
    switch (operation) {
    case FileOperation::read:
        return "read";
    case FileOperation::write:
        return "write";
    case FileOperation::list:
        return "list the folder";
    case FileOperation::createFolder:
        return "create the folder";
    case FileOperation::remove:
        return "remove";
    case FileOperation::copy:
        return "copy";
    case FileOperation::replace:
        return "replace";
    case FileOperation::flush:
        return "finish writing";
    case FileOperation::inspect:
        return "look at";
    case FileOperation::lock:
        return "lock";
    }
    return "use";
}

} // namespace

FileError::FileError(FileOperation operation, std::filesystem::path path, std::error_code code)
    : operation_(operation),
      path_(std::move(path)),
      code_(code),
      description_("Unable to " + std::string(verb(operation_)) + " " +
                   text::validUTF8(path_.native()) + ": " + code_.message() + ".") {}

FileError::FileError(FileOperation operation, std::filesystem::path path, int errorNumber)
    : FileError(operation, std::move(path), std::error_code(errorNumber, std::generic_category())) {
}

} // namespace torvo
