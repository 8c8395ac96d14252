#pragma once

#include "ForwardingFileManager.h"

namespace torvo::test {

/// A file system in which one folder is locked: it can neither be listed, nor can anything in it be
/// opened, created or replaced (`EACCES`). Tests may run as root, whom permission bits do not stop.
class LockedFolderFileManager final : public ForwardingFileManager {
public:
    explicit LockedFolderFileManager(const std::filesystem::path& locked);
};

} // namespace torvo::test
