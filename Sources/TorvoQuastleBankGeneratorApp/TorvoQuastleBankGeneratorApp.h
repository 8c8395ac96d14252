#pragma once

#include "AppModel.h"
#include "MainWindow.h"
#include "QtPanels.h"

#include <memory>

namespace torvo::app {

inline constexpr const char* applicationName = "Torvo Quastle Bank Generator";

/// The application: its model, its window and the commands of the menu.
class TorvoQuastleBankGeneratorApp final {
public:
    TorvoQuastleBankGeneratorApp();

    QMainWindow& window() { return window_; }
    AppModel& model() { return model_; }

    /// Makes the window as high as its content, limited by the screen.
    void showWindow();

private:
    void addFileMenu();
    void addHelpMenu();

    std::shared_ptr<QtPanels> panels_;
    AppModel model_;
    MainWindow window_;
};

/// Sets the theme of the process, including its images. Call once, before the first window is
/// created.
void installTheme();

} // namespace torvo::app
