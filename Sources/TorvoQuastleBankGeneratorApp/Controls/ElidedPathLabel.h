#pragma once

#include <QLabel>

namespace torvo::app {

/// A path on one line. One that is too long loses its middle on the screen only: the tooltip, which
/// the keyboard calls up too, a screen reader and the clipboard get the whole of it.
class ElidedPathLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ElidedPathLabel(QWidget* parent = nullptr);

    void setPath(const QString& path) { setPath(path, path); }
    /// `line` stands for the path on the screen: a shorter form of it.
    void setPath(const QString& path, const QString& line);
    const QString& path() const { return path_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void elide();
    void copy() const;

    QString path_;
    QString line_; ///< what is shown where there is room for it
};

} // namespace torvo::app
