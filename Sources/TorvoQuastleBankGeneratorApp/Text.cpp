#include "Text.h"

#include <QTextDocument>

namespace torvo::app {

QString plainToolTip(const QString& text) {
    if (!Qt::mightBeRichText(text))
        return text;
    return QStringLiteral("<p style='white-space:pre'>") + text.toHtmlEscaped() +
           QStringLiteral("</p>");
}

} // namespace torvo::app
