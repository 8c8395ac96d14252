#include "SourceFolder.h"

#include "Models/Device.h"
#include "Platform/FileOperations.h"
#include "Platform/SystemFileManager.h"
#include "Platform/UnicodeText.h"

namespace torvo::app {

bool isDeviceFolder(const FileURL& folder) {
    return text::equalsIgnoringCase(folder.lastPathComponent(), device::folderName);
}

FileURL resolvedSource(const FileURL& folder) {
    if (isDeviceFolder(folder))
        return folder;
    try {
        const FileURL resolved = resolvingSymlinks(*systemFileManager(), folder);
        return isDeviceFolder(resolved) ? folder : FileURL::directory(resolved.path());
    } catch (const FileError&) {
        return folder;
    }
}

bool leadsTo(const FileURL& folder, const FileURL& resolvedFolder) {
    if (folder.nativePath() == resolvedFolder.nativePath())
        return true;
    try {
        return resolvingSymlinks(*systemFileManager(), folder).nativePath() ==
               resolvedFolder.nativePath();
    } catch (const FileError&) {
        return false;
    }
}

} // namespace torvo::app
