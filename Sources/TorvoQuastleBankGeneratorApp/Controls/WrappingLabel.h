#pragma once

#include <QLabel>

namespace torvo::app {

/// A label that wraps between words and, where a path or name is longer than a line, within them.
class WrappingLabel final : public QLabel {
    Q_OBJECT

public:
    explicit WrappingLabel(QWidget* parent = nullptr);

    /// Lets the user select and copy the text by mouse, by the standard keys or from the context
    /// menu. Without a selection, the whole text is copied.
    void setCopyable(bool copyable);
    /// A longer text is elided in the middle of its last line.
    void setMaxLines(int lines);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    int positionAt(QPointF point) const;
    void select(int anchor, int position);
    void selectAll();
    void copy() const;

    bool isCopyable_ = false;
    int maxLines_ = 5;
    int anchor_ = 0; ///< start of the selection, in characters
    int position_ = 0;
};

} // namespace torvo::app
