#include "LockedFolderFileManager.h"

#include <cerrno>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

/// Whether the call needs an entry of the folder of its path.
bool usesEntry(const FileCall& call) {
    return call.function == "createDirectory" || call.function == "removeItem" ||
           call.function == "replaceItem" || call.function.starts_with("open ");
}

} // namespace

LockedFolderFileManager::LockedFolderFileManager(const fs::path& locked)
    : ForwardingFileManager([locked](const FileCall& call) {
          if (usesEntry(call) ? call.path.parent_path() == locked
                              : call.function == "contentsOfDirectory" && call.path == locked)
              throw FileError(call.operation, call.path, EACCES);
      }) {}

} // namespace torvo::test
