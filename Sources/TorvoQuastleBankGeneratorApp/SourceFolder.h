#pragma once

#include "Platform/FileManager.h"
#include "Platform/FileURL.h"

namespace torvo::app {

/// Whether the folder has the name of a device folder, ignoring case.
bool isDeviceFolder(const FileURL& folder);

/// A chosen or dropped source with its links resolved, so that the window shows the names of the
/// folder that is scanned. Unchanged if it cannot be resolved, or if it or its target has the name
/// of a device folder, which decides between scanning and stamping.
FileURL resolvedSource(const FileManager& fileManager, const FileURL& folder);

/// Whether `folder` is the folder at `resolvedFolder`, links in `folder` resolved. False when it
/// cannot be resolved.
bool leadsTo(const FileManager& fileManager, const FileURL& folder, const FileURL& resolvedFolder);

} // namespace torvo::app
