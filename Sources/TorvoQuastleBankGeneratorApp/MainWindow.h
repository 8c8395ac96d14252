#pragma once

#include <QMainWindow>

namespace torvo::app {

/// The one window. The process ends with it, whatever else is open or about to open.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

protected:
    void closeEvent(QCloseEvent* event) override;
};

} // namespace torvo::app
