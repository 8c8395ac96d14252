#include "SourceFolder.h"

#include "Models/Device.h"
#include "Platform/FileOperations.h"
#include "Platform/UnicodeText.h"

namespace torvo::app {

bool isDeviceFolder(const FileURL& folder) {
    return text::equalsIgnoringCase(folder.lastPathComponent(), device::folderName);
}

FileURL resolvedSource(const FileManager& fileManager, const FileURL& folder) {
    if (isDeviceFolder(folder))
        return folder;
    try {
        const FileURL resolved = resolvingSymlinks(fileManager, folder);
        return isDeviceFolder(resolved) ? folder : FileURL::directory(resolved.path());
    } catch (const FileError&) {
        return folder;
    }
}

bool leadsTo(const FileManager& fileManager, const FileURL& folder, const FileURL& resolvedFolder) {
    try {
        return resolvingSymlinks(fileManager, folder).nativePath() == resolvedFolder.nativePath();
    } catch (const FileError&) {
        return false;
    }
}

} // namespace torvo::app
