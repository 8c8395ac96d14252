#pragma once

#include <QWidget>

class QLabel;

namespace torvo::app {

class AppModel;
class ElidedPathLabel;
class LinkButton;
class MessagePlate;
class ProgressBar;
class StatusIcon;
class WrappingLabel;

/// The message strip: the state of the current run or the result of the last one.
class RunMessage final : public QWidget {
    Q_OBJECT

public:
    explicit RunMessage(AppModel& model, QWidget* parent = nullptr);

private:
    void render();

    AppModel& model_;
    MessagePlate* plate_;
    StatusIcon* icon_;
    WrappingLabel* message_;
    QLabel* nextStep_;
    QLabel* counts_;
    ElidedPathLabel* file_; ///< the file that caused a failure
    ProgressBar* progress_;
    LinkButton* showFolder_;
};

} // namespace torvo::app
