#pragma once

#include "Panels.h"

#include <QString>

#include <map>

class QWidget;

namespace torvo::app {

/// The desktop's file panels, modal to a window that outlives them.
class QtPanels final : public Panels {
public:
    /// Until a window is named, panels stand alone.
    void setWindow(QWidget* window) { window_ = window; }
    /// Where the folder panel of this title opens; none: where the program was started.
    void startAt(const std::string& title, const std::optional<FileURL>& folder);

    std::optional<FileURL> pickFolder(const std::string& title) override;
    std::optional<FileURL> saveJSONPanel(const std::string& defaultFileName) override;
    std::optional<FileURL> pickJSONFile() override;

private:
    QWidget* window_ = nullptr;
    std::map<std::string, QString> starts_; ///< by title
};

} // namespace torvo::app
