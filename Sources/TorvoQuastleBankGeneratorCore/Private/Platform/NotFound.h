#pragma once

#include "Platform/FileError.h"

namespace torvo {

/// Whether the error means that nothing exists at the path: no such file, a parent that is not a
/// folder, or a loop of symbolic links.
inline bool isNotFound(const FileError& error) {
    return error.code() == std::errc::no_such_file_or_directory ||
           error.code() == std::errc::not_a_directory ||
           error.code() == std::errc::too_many_symbolic_link_levels;
}

} // namespace torvo
