#pragma once

#include "Platform/FileManager.h"

#include <memory>

namespace torvo {

/// The implementation that uses POSIX and Linux system calls.
std::shared_ptr<const FileManager> systemFileManager();

} // namespace torvo
