#include "Controls/ProgressBar.h"
#include "MarloTheme.h"
#include "Support/Pixels.h"

#include <gtest/gtest.h>

using namespace torvo::app;
using namespace torvo::test;

namespace {

constexpr QSize barSize{200, 6};

QImage seen(int minimum, int maximum, int value) {
    ProgressBar bar;
    bar.resize(barSize);
    bar.setRange(minimum, maximum);
    bar.setValue(value);
    return painted(barSize, MarloTheme::panel, [&bar](QPainter& painter) {
        bar.render(&painter, {}, {}, QWidget::DrawChildren);
    });
}

} // namespace

TEST(ProgressBar, isPaintedAtItsFraction) {
    struct Row {
        int minimum;
        int maximum;
        int value;
        int filled; ///< pixels
    };
    for (const Row& row : {Row{0, 99, 33, 66}, Row{0, 99, 66, 133}, Row{10, 20, 15, 100}}) {
        SCOPED_TRACE(row.value);
        const QImage image = seen(row.minimum, row.maximum, row.value);
        EXPECT_PIXEL(image, 5, 3, MarloTheme::accent);
        // The end is rounded.
        EXPECT_PIXEL(image, row.filled - 5, 3, MarloTheme::accent);
        EXPECT_PIXEL(image, row.filled + 2, 3, MarloTheme::panelRaised);
        EXPECT_PIXEL(image, 194, 3, MarloTheme::panelRaised);
    }
    EXPECT_PIXEL(seen(0, 99, 0), 5, 3, MarloTheme::panelRaised);
    EXPECT_PIXEL(seen(0, 99, 99), 194, 3, MarloTheme::accent);
}

TEST(ProgressBar, itsLightRunsFromEndToEnd) {
    const QRectF bar(QPointF(0, 0), QSizeF(barSize));
    EXPECT_LE(lightOnBar(bar, 0).right(), bar.left());
    double previous = -bar.width();
    for (const double seconds : {0.0, 0.4, 0.8, 1.2, 1.6, 2.0, 2.39}) {
        const double left = lightOnBar(bar, seconds).left();
        EXPECT_GT(left, previous);
        previous = left;
    }
    EXPECT_GT(previous, 0.98 * bar.right());
    EXPECT_LT(lightOnBar(bar, 2.5).left(), bar.left());
}
