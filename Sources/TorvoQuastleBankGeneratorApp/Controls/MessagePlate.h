#pragma once

#include <QWidget>

namespace torvo::app {

/// The background of a message. It is light for a failure, because the colour of errors has too
/// little contrast on a dark one.
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
