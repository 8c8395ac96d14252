#pragma once

#include "Platform/FileURL.h"

#include <optional>
#include <string>

namespace torvo::app {

inline constexpr const char* sourceFolderTitle = "Choose a source sample folder";
inline constexpr const char* exportFolderTitle = "Choose an export destination folder";

/// The desktop's modal file panels and its file browser. A panel returns nothing if the user
/// cancels it.
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

    /// Shows the item in its folder. Returns at once.
    virtual void showInFileBrowser(const FileURL& item) = 0;
};

} // namespace torvo::app
