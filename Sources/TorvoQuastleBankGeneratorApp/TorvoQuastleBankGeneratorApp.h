#pragma once

#include "AppModel.h"
#include "MainWindow.h"
#include "QtPanels.h"

#include <memory>

namespace torvo::app {

inline constexpr const char* applicationName = "Torvo Quastle Bank Generator";

/// The application: its one model, its one window and the commands of the menu.
class TorvoQuastleBankGeneratorApp final {
public:
    TorvoQuastleBankGeneratorApp();

    QMainWindow& window() { return window_; }
    AppModel& model() { return model_; }

    /// As high as its content and the screen allow.
    void showWindow();

private:
    void addFileMenu();
    void addHelpMenu();

    std::shared_ptr<QtPanels> panels_;
    AppModel model_;
    MainWindow window_;
};

/// The theme for the whole process, its pictures included. Called once, before the first window.
void installTheme();

} // namespace torvo::app
