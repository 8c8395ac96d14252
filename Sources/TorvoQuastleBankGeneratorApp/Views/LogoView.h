#pragma once

#include <QImage>
#include <QWidget>

namespace torvo::app {

/// The maker's logo, or a text badge when there is no image.
class LogoView final : public QWidget {
    Q_OBJECT

public:
    explicit LogoView(QImage image, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage image_;
};

} // namespace torvo::app
