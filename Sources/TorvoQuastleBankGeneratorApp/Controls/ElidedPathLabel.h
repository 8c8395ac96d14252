#pragma once

#include <QLabel>

namespace torvo::app {

/// A path on one line, elided in the middle if it is too long. The tooltip (also available by
/// keyboard), the accessible name and the clipboard contain the whole path.
class ElidedPathLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ElidedPathLabel(QWidget* parent = nullptr);

    void setPath(const QString& path) { setPath(path, path); }
    /// `line` is a shorter form of the path that is shown instead.
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
    QString line_; ///< shown if there is enough space
};

} // namespace torvo::app
