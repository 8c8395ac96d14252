#pragma once

#include <QWidget>

namespace torvo::app {

class AppModel;

/// Where the samples come from: dropped or chosen.
class SourceCard final : public QWidget {
    Q_OBJECT

public:
    explicit SourceCard(AppModel& model, QWidget* parent = nullptr);

private:
    void chooseFolder();

    AppModel& model_;
};

} // namespace torvo::app
