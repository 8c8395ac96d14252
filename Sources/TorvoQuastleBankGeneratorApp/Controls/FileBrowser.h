#pragma once

#include "Platform/FileURL.h"

#include <QDBusConnection>

namespace torvo::app {

/// Opens the folder that holds `item` in the desktop's file browser and selects the item there
/// (ShowItems of org.freedesktop.FileManager1). If no file browser provides this, opens the folder
/// with the default program for folders. Returns at once.
void showInFileBrowser(const FileURL& item, const QDBusConnection& bus);

} // namespace torvo::app
