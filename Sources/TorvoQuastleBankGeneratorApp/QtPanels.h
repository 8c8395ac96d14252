#pragma once

#include "Panels.h"

#include <QDBusConnection>
#include <QSize>
#include <QString>

#include <map>
#include <optional>
#include <utility>

class QWidget;

namespace torvo::app {

/// The size for a panel of Qt that would have `size`: roomy, but no larger than the screen's free
/// area, whose lower edge would cut off the buttons.
QSize panelSize(QSize size, QSize freeArea);

/// The desktop's file panels, modal to a window that outlives them, and its file browser.
class QtPanels final : public Panels {
public:
    /// `bus` is the bus of the file browser, by default the session bus.
    explicit QtPanels(std::optional<QDBusConnection> bus = {}) : bus_(std::move(bus)) {}

    /// Panels have no parent until a window is set.
    void setWindow(QWidget* window) { window_ = window; }
    /// The folder in which the panel with this title opens; by default the current folder.
    void startAt(const std::string& title, const std::optional<FileURL>& folder);

    std::optional<FileURL> pickFolder(const std::string& title) override;
    std::optional<FileURL> saveJSONPanel(const std::string& defaultFileName) override;
    std::optional<FileURL> pickJSONFile() override;
    void showInFileBrowser(const FileURL& item) override;

private:
    std::optional<QDBusConnection> bus_;
    QWidget* window_ = nullptr;
    std::map<std::string, QString> starts_; ///< folders by the title of the panel
};

} // namespace torvo::app
