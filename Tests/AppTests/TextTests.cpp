#include "Text.h"

#include <QTextDocument>
#include <gtest/gtest.h>

#include <string>

using namespace torvo::app;

namespace {

QString repeated(const char* text, int times) {
    return QString::fromUtf8(text).repeated(times);
}

} // namespace

TEST(Text, breaksLongPathsOfTooltipsAtSlashes) {
    const QString path = repeated("/a folder of twenty", 12) + QStringLiteral("/kick.wav");
    const QString shown = plainToolTip(path);
    EXPECT_EQ(QString(shown).remove(QLatin1Char('\n')), path);
    const QStringList lines = shown.split(QLatin1Char('\n'));
    EXPECT_EQ(lines.size(), 3);
    for (const QString& line : lines) {
        EXPECT_LE(line.size(), 90);
        EXPECT_TRUE(line == lines.back() || line.endsWith(QLatin1Char('/'))) << line.toStdString();
    }
}

TEST(Text, breaksLongNamesOfTooltipsAnywhereButInsideALetter) {
    // The letter takes two of Qt's characters, of which the first would be the last of a line.
    const QString name = QString(89, QLatin1Char('n')) + repeated("\xf0\x9f\xa5\x81", 60);
    const QStringList lines = plainToolTip(name).split(QLatin1Char('\n'));
    ASSERT_GT(lines.size(), 2);
    EXPECT_EQ(lines.join(QString()), name);
    for (const QString& line : lines) {
        EXPECT_LE(line.size(), 90);
        EXPECT_FALSE(line.back().isHighSurrogate());
    }
}

TEST(Text, keepsTheLinesOfTooltipsAndTakesNothingForMarkup) {
    EXPECT_EQ(plainToolTip(QStringLiteral("Kick/notes.txt\nUnsupported audio file")),
              QStringLiteral("Kick/notes.txt\nUnsupported audio file"));
    const QString path = repeated("/<b>folder", 20);
    QTextDocument document;
    document.setHtml(plainToolTip(path));
    EXPECT_EQ(document.toPlainText().remove(QLatin1Char('\n')), path);
    EXPECT_TRUE(document.toPlainText().contains(QLatin1Char('\n')));
}
