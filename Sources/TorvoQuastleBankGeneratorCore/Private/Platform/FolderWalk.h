#pragma once

#include "Platform/FileManager.h"
#include "Platform/FileURL.h"
#include "Platform/IOThreadPool.h"

#include <functional>

namespace torvo {

/// An item found by `enumerateDeep`.
struct EnumeratedItem {
    FileURL url;
    FileKind kind = FileKind::regular; ///< kind of the entry itself; links are not followed
};

enum class EnumerationOptions {
    skipPackageContents, ///< does not enter folders that the desktop shows as one item
    skipHidden,          ///< omits names that begin with a dot, and the contents of such folders
    skipNothing,
};

/// How an unreadable folder below the root is handled.
enum class UnreadableFolders {
    passOver, ///< skips the folder, as a file browser does
    fail,     ///< throws its `FileError`
};

using EnumerationVisitor = std::function<void(EnumeratedItem item)>;

/// Visits every item below `root` depth first, the entries of each folder in byte order of their
/// names. A folder is listed right after it was visited, or earlier on the threads of `readAhead`,
/// which must not outlive `fileManager`. Symbolic links are visited but not followed. Returns false
/// without visiting anything when `root` is not a readable folder.
bool enumerateDeep(const FileManager& fileManager, const FileURL& root, EnumerationOptions options,
                   UnreadableFolders unreadable, const EnumerationVisitor& visit,
                   IOThreadPool* readAhead = nullptr);

} // namespace torvo
