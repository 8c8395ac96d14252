#pragma once

#include <QWidget>

namespace torvo::app {

/// Lies behind a message. A failure gets a light plate: the colour of errors cannot be read on a
/// dark one.
class MessagePlate final : public QWidget {
    Q_OBJECT

public:
    explicit MessagePlate(QWidget* parent = nullptr);

    void setFailed(bool failed);
    bool isFailed() const { return isFailed_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool isFailed_ = false;
};

} // namespace torvo::app
