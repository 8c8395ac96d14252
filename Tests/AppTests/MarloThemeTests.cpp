#include "MarloTheme.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <gtest/gtest.h>

using namespace torvo::app;

TEST(MarloTheme, hasNineColours) {
    struct Row {
        const char* name;
        QColor color;
        const char* argb;
    };
    const std::array<Row, 9> rows{{{"surface", MarloTheme::surface, "#ff272822"},
                                   {"panel", MarloTheme::panel, "#ff31332b"},
                                   {"panelRaised", MarloTheme::panelRaised, "#ff3a3d33"},
                                   {"accent", MarloTheme::accent, "#ff99947c"},
                                   {"ink", MarloTheme::ink, "#fff8f8f2"},
                                   {"muted", MarloTheme::muted, "#ffb8b6a9"},
                                   {"line", MarloTheme::line, "#14ffffff"},
                                   {"success", MarloTheme::success, "#ff86b42b"},
                                   {"danger", MarloTheme::danger, "#ffc4265e"}}};
    for (const Row& row : rows)
        EXPECT_EQ(row.color.name(QColor::HexArgb).toStdString(), row.argb) << row.name;
}

TEST(MarloTheme, multipliesOpacities) {
    EXPECT_NEAR(MarloTheme::withOpacity(MarloTheme::accent, 0.38).alphaF(), 0.38, 0.001);
    EXPECT_NEAR(MarloTheme::withOpacity(MarloTheme::line, 0.5).alphaF(), 20.0 / 255 / 2, 0.001);
}

TEST(MarloTheme, findsEachStyleInTheFamilyOrTheSystemFont) {
    using enum MarloTheme::FontCut;
    struct Row {
        MarloTheme::FontCut cut;
        const char* style;
        int weight;
    };
    const QString wanted = QStringLiteral("JetBrains Mono");
    const QString system = QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
    for (const Row& row : {Row{regular, "Regular", 400}, Row{medium, "Medium", 500},
                           Row{semiBold, "SemiBold", 600}, Row{bold, "Bold", 700}}) {
        const QFont font = MarloTheme::font(14, row.cut);
        const bool installed =
            QFontDatabase::styles(wanted).contains(QString::fromLatin1(row.style));
        EXPECT_EQ(font.family(), installed ? wanted : system) << row.style;
        EXPECT_EQ(font.weight(), row.weight) << row.style;
        EXPECT_EQ(font.pixelSize(), 14) << row.style;
        EXPECT_TRUE(QFontInfo(font).fixedPitch()) << row.style;
    }
}
