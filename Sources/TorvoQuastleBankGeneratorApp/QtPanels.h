#pragma once

#include "Panels.h"

class QWidget;

namespace torvo::app {

/// The desktop's file panels, modal to a window that outlives them.
class QtPanels final : public Panels {
public:
    /// Until a window is named, panels stand alone.
    void setWindow(QWidget* window) { window_ = window; }

    std::optional<FileURL> pickFolder(const std::string& title) override;
    std::optional<FileURL> saveJSONPanel(const std::string& defaultFileName) override;
    std::optional<FileURL> pickJSONFile() override;

private:
    QWidget* window_ = nullptr;
};

} // namespace torvo::app
