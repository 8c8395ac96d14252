#pragma once

#include "ContentView.h"
#include "Controls/DisclosureSection.h"
#include "Controls/DropZone.h"
#include "Support/AppFixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

#include <vector>

namespace torvo::test {

/// The content of the window, shown, with functions to inspect and operate it.
struct ContentViewFixture : AppFixture {
    app::ContentView view{model};

    ContentViewFixture() {
        view.resize(880, 1200);
        view.show();
    }

    /// Processes events until all layouts have settled.
    static void settle() {
        for (int pass = 0; pass < 12; ++pass)
            QApplication::processEvents();
    }
    template <typename Widget>
    std::vector<Widget*> showing() const {
        std::vector<Widget*> found;
        for (auto* widget : view.findChildren<Widget*>())
            if (widget->isVisible())
                found.push_back(widget);
        return found;
    }
    /// The visible label with exactly this text, or null.
    QLabel* label(const QString& text) const {
        for (auto* label : showing<QLabel>())
            if (label->text() == text)
                return label;
        return nullptr;
    }
    bool shows(const char* text) const { return label(QString::fromUtf8(text)) != nullptr; }
    QAbstractButton* button(const char* text) const {
        for (auto* button : showing<QAbstractButton>())
            if (button->text() == QString::fromUtf8(text))
                return button;
        return nullptr;
    }
    QAbstractButton* sourceButton() const {
        return view.findChild<QAbstractButton*>(QStringLiteral("chooseSourceFolder"));
    }
    QAbstractButton* outputButton() const {
        return view.findChild<QAbstractButton*>(QStringLiteral("chooseExportFolder"));
    }
    QAbstractButton* mainButton() const {
        return view.findChild<QAbstractButton*>(QStringLiteral("mainButton"));
    }
    /// Clicks and processes queued calls.
    void press(QAbstractButton* button) {
        ASSERT_TRUE(button);
        QTest::mouseClick(button, Qt::LeftButton);
        QApplication::processEvents();
    }
    app::DisclosureSection* section(const char* name) const {
        return view.findChild<app::DisclosureSection*>(QString::fromLatin1(name));
    }
    QColor colorOf(const char* text) const {
        const QLabel* found = label(QString::fromUtf8(text));
        return found ? found->palette().color(QPalette::WindowText) : QColor();
    }
    /// Drops URLs and returns the window's answer.
    bool drop(const QList<QUrl>& urls) { return dropOn(view, urls); }
    bool dropOn(QWidget& area, const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&area, &enter);
        EXPECT_EQ(view.isTargeted(), enter.isAccepted());
        QDropEvent drop({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        drop.ignore();
        QApplication::sendEvent(&area, &drop);
        EXPECT_FALSE(view.isTargeted());
        return drop.isAccepted();
    }
    static QUrl url(const std::filesystem::path& path) {
        return QUrl::fromLocalFile(QString::fromStdString(path.string()));
    }
    FileURL deviceFolder() const { return FileURL::directory(folder.createFolder("QZT508")); }
};

} // namespace torvo::test
