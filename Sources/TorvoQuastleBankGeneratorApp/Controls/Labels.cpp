#include "Controls/Labels.h"

#include <QLabel>

namespace torvo::app {

QLabel* makeLabel(const QString& text, int pixelSize, MarloTheme::FontCut cut, QColor color) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setFont(MarloTheme::font(pixelSize, cut));
    label->setText(text);
    // Otherwise it would take the role of its parent, for example that of a button's text.
    label->setForegroundRole(QPalette::WindowText);
    setTextColor(*label, color);
    return label;
}

QLabel* makeCardHeading(const QString& text) {
    QLabel* label = makeLabel(text, 15, MarloTheme::FontCut::bold, MarloTheme::ink);
    QFont font = label->font();
    font.setLetterSpacing(QFont::AbsoluteSpacing, 1);
    label->setFont(font);
    return label;
}

QLabel* makeSubheading(const QString& text) {
    return makeLabel(text, 13, MarloTheme::FontCut::semiBold, MarloTheme::ink);
}

QLabel* makeCaption(const QString& text) {
    return makeLabel(text, 12, MarloTheme::FontCut::medium, MarloTheme::muted);
}

void setTextColor(QLabel& label, QColor color) {
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, color);
    palette.setColor(QPalette::Text, color);
    label.setPalette(palette);
}

} // namespace torvo::app
