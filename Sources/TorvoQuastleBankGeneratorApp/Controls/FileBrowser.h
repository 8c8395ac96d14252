#pragma once

#include "Platform/FileURL.h"

#include <QDBusConnection>

namespace torvo::app {

/// Opens the folder that holds `item` in the desktop's file browser and selects the item there
/// (ShowItems of org.freedesktop.FileManager1). Where no file browser answers to that, the folder
/// is opened with whatever opens folders. Returns at once.
void showInFileBrowser(const FileURL& item, const QDBusConnection& bus);

} // namespace torvo::app
