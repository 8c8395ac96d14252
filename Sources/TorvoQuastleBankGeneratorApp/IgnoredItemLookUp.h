#pragma once

#include "Models.h"
#include "Platform/FileManager.h"

#include <optional>
#include <string>

namespace torvo::app {

/// The item that a row of the ignored lists stands for, given the path of the row. Empty when it is
/// gone or has become a link, and when the row may mean another item: a target outside the scanned
/// folder is listed by its name alone, which an item at the top of the folder may have, too.
std::optional<FileURL> findIgnoredItem(const FileManager& fileManager, const ScanReport& report,
                                       const std::string& path);

} // namespace torvo::app
