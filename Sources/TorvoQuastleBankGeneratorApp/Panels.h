#pragma once

#include "Platform/FileURL.h"

#include <optional>
#include <string>

namespace torvo::app {

inline constexpr const char* sourceFolderTitle = "Choose a source sample folder";
inline constexpr const char* exportFolderTitle = "Choose an export destination folder";

/// What the desktop shows beside the window: above all the modal panels in which the user names a
/// file or a folder. None means cancelled.
class Panels {
public:
    virtual ~Panels() = default;

    /// An existing or newly created folder.
    virtual std::optional<FileURL> pickFolder(const std::string& title) = 0;
    /// Where to save a JSON document; the name ends in ".json". If the file exists, the user has
    /// agreed to replace it.
    virtual std::optional<FileURL> saveJSONPanel(const std::string& defaultFileName) = 0;
    /// An existing JSON document.
    virtual std::optional<FileURL> pickJSONFile() = 0;

    /// Shows where the item is, without waiting for it.
    virtual void showInFileBrowser(const FileURL& item) = 0;
};

} // namespace torvo::app
