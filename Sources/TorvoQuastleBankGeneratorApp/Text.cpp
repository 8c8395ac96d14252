#include "Text.h"

#include <QTextDocument>

namespace torvo::app {

namespace {

constexpr qsizetype maxToolTipLine = 90; ///< in characters

/// Breaks a line that is too long after a "/". Qt does not wrap plain tooltips, and never a path.
QString brokenLine(QString line) {
    QString broken;
    while (line.size() > maxToolTipLine) {
        qsizetype end = line.lastIndexOf(QLatin1Char('/'), maxToolTipLine - 1) + 1;
        if (end < maxToolTipLine / 2) // inside a long name, to avoid a short line
            end = maxToolTipLine - (line.at(maxToolTipLine - 1).isHighSurrogate() ? 1 : 0);
        broken += line.left(end) + QLatin1Char('\n');
        line.remove(0, end);
    }
    return broken + line;
}

} // namespace

QString plainToolTip(const QString& text) {
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& line : lines)
        line = brokenLine(line);
    QString broken = lines.join(QLatin1Char('\n'));
    if (!Qt::mightBeRichText(broken))
        return broken;
    return QStringLiteral("<p style='white-space:pre'>") + broken.toHtmlEscaped() +
           QStringLiteral("</p>");
}

} // namespace torvo::app
