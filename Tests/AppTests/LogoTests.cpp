#include "Logo.h"
#include "MarloTheme.h"
#include "Support/Pixels.h"
#include "TemporaryFolder.h"
#include "Views/LogoView.h"

#include <gtest/gtest.h>

using namespace torvo::app;
using namespace torvo::test;

namespace {

QString saved(const TemporaryFolder& folder, const char* name, const QColor& color) {
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(color);
    const QString path = QString::fromStdString((folder / name).string());
    EXPECT_TRUE(image.save(path));
    return path;
}

bool contains(const QImage& image, const QColor& color) {
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) == color)
                return true;
    return false;
}

} // namespace

TEST(Logo, isSearchedInTheProgramThenBelowTheCurrentFolder) {
    const QString file =
        QStringLiteral("Sources/TorvoQuastleBankGeneratorApp/Resources/HVRN_dude_hips.png");
    EXPECT_EQ(halvorineLogoLocations(), QStringList({QStringLiteral(":/HVRN_dude_hips.png"), file,
                                                     QStringLiteral("remote/") + file}));
    EXPECT_FALSE(loadHalvorineLogoImage().isNull());
}

TEST(Logo, isTheFirstImageThatCanBeLoaded) {
    const TemporaryFolder folder;
    const auto broken = folder.write("broken.png", "no picture");
    const QString first = saved(folder, "first.png", Qt::red);
    const QString second = saved(folder, "second.png", Qt::blue);
    const QString absent = QString::fromStdString((folder / "absent.png").string());
    const QString damaged = QString::fromStdString(broken.string());
    EXPECT_EQ(loadHalvorineLogoImage({absent, damaged, first, second}).pixelColor(0, 0),
              QColor(Qt::red));
    EXPECT_EQ(loadHalvorineLogoImage({second, first}).pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_TRUE(loadHalvorineLogoImage({absent, damaged}).isNull());
}

TEST(Logo, isABadgeWithoutAnImage) {
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    EXPECT_TRUE(contains(LogoView(image).grab().toImage(), Qt::red));
    LogoView badge({});
    badge.resize(badge.sizeHint());
    EXPECT_EQ(badge.accessibleName(), QStringLiteral("HVRN"));
    const QImage shown = painted(badge.sizeHint(), MarloTheme::surface, [&](QPainter& painter) {
        badge.render(&painter, {}, {}, QWidget::RenderFlags());
    });
    const QImage expected = painted(badge.sizeHint(), MarloTheme::surface, [&](QPainter& painter) {
        painter.setFont(MarloTheme::font(20, MarloTheme::FontCut::bold));
        painter.setPen(MarloTheme::accent);
        painter.drawText(badge.rect(), Qt::AlignCenter, QStringLiteral("HVRN"));
    });
    EXPECT_EQ(shown, expected);
}
