#pragma once

#include "Controls/Card.h"

class QLabel;

namespace torvo::app {

class AppModel;
class ElidedPathLabel;
class MarloButton;

/// The card with the output folder and the main action, GENERATE or APPLY.
class OutputCard final : public Card {
    Q_OBJECT

public:
    explicit OutputCard(AppModel& model, QWidget* parent = nullptr);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void render();
    void renderMappingFile();
    void chooseFolder();
    void startMainAction();

    AppModel& model_;
    MarloButton* choose_;
    MarloButton* main_;
    ElidedPathLabel* target_;
    QLabel* replacement_;
    ElidedPathLabel* mappingFile_;
    QWidget* mappingRow_;
};

} // namespace torvo::app
