#pragma once

#include "Platform/FileURL.h"

namespace torvo::app {

/// Whether the folder has the name of the folder that the device reads, in any case.
bool isDeviceFolder(const FileURL& folder);

/// A chosen or dropped source as the model is to get it: with links resolved, so that the names on
/// the screen are those of the folder that is scanned. As it was given when it or the folder that
/// it leads to has the name of a device folder, which decides between scanning and stamping, and
/// when it cannot be resolved.
FileURL resolvedSource(const FileURL& folder);

/// Whether `folder` is the folder at `resolvedFolder`, links in `folder` resolved. False when it
/// cannot be resolved.
bool leadsTo(const FileURL& folder, const FileURL& resolvedFolder);

} // namespace torvo::app
