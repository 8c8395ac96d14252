#pragma once

#include <QWidget>

namespace torvo::app {

class AppModel;

/// The header: the title, what the program does in the selected mode, and the maker.
class HeaderView final : public QWidget {
    Q_OBJECT

public:
    explicit HeaderView(AppModel& model, QWidget* parent = nullptr);
};

} // namespace torvo::app
