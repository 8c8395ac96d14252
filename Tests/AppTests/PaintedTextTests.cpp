#include "Controls/DisclosureHeader.h"
#include "Controls/LinkButton.h"
#include "MarloTheme.h"
#include "Support/Pixels.h"

#include <QFontMetrics>
#include <gtest/gtest.h>

#include <cmath>

using namespace torvo::app;
using namespace torvo::test;

namespace {

constexpr QSize headerSize{400, DisclosureHeaderStyle::height};
constexpr int titleLeft = 24;
constexpr int countGap = 10;

QImage seen(QWidget& widget) {
    return painted(widget.size(), MarloTheme::surface, [&widget](QPainter& painter) {
        widget.render(&painter, {}, {}, QWidget::DrawChildren);
    });
}

QImage seenHeader(const char* title, qsizetype count) {
    DisclosureHeader header(QString::fromLatin1(title));
    header.setCount(count, QString());
    header.resize(headerSize);
    return seen(header);
}

/// An image of a single line of text that starts at `left`.
QImage line(double left, const QString& text, const QColor& color) {
    return painted(headerSize, MarloTheme::surface, [&](QPainter& painter) {
        painter.setFont(MarloTheme::font(12, MarloTheme::FontCut::semiBold));
        painter.setPen(color);
        painter.drawText(QRectF(QPointF(left, 0), QSizeF(headerSize)),
                         Qt::AlignVCenter | Qt::AlignLeft, text);
    });
}

} // namespace

TEST(DisclosureHeader, paintsItsTitleAndItsCount) {
    const QString title = QStringLiteral("IGNORED FILES");
    const QFontMetricsF metrics(MarloTheme::font(12, MarloTheme::FontCut::semiBold));
    const double countLeft = titleLeft + metrics.horizontalAdvance(title) + countGap;
    const int border = static_cast<int>(std::floor(countLeft)) - countGap / 2;
    const QRect titleArea(titleLeft, 0, border - titleLeft, headerSize.height());
    const QRect countArea(border, 0, headerSize.width() - border, headerSize.height());
    const QImage header = seenHeader("IGNORED FILES", 128);
    EXPECT_EQ(header.copy(titleArea), line(titleLeft, title, MarloTheme::muted).copy(titleArea));
    EXPECT_EQ(header.copy(countArea),
              line(countLeft, QStringLiteral("128"), MarloTheme::ink).copy(countArea));
}

TEST(LinkButton, paintsItsTextUnderlined) {
    LinkButton link(QStringLiteral("Halvorine"));
    link.resize(link.sizeHint());
    const QImage expected = painted(link.size(), MarloTheme::surface, [&link](QPainter& painter) {
        QFont font = MarloTheme::font(13, MarloTheme::FontCut::medium);
        font.setUnderline(true);
        painter.setFont(font);
        painter.setPen(MarloTheme::muted);
        painter.drawText(link.rect(), Qt::AlignCenter, QStringLiteral("Halvorine"));
    });
    EXPECT_EQ(seen(link), expected);
}
