#pragma once

#include "Controls/FocusKeeper.h"
#include "Controls/FocusRing.h"
#include "Controls/FolderDrops.h"

#include <QWidget>

class QScrollArea;
class QVBoxLayout;

namespace torvo::app {

class AppModel;

/// The content of the window: shows the model and turns each user action into one call on it. The
/// source, channel and metadata cards scroll; the output card and the state of the run stay visible
/// below them.
class ContentView final : public QWidget {
    Q_OBJECT

public:
    /// The smallest size, unless the screen has less room.
    static constexpr QSize usualMinSize{880, 760};

    explicit ContentView(AppModel& model, QWidget* parent = nullptr);

    /// Whether a drag that contains a file URL is over the window.
    bool isTargeted() const { return drops_.isTargeted(); }
    /// Accepts drops on this widget, too.
    void takeDropsOn(QWidget& area) { drops_.watch(area); }

    /// The size at which everything is visible without scrolling.
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    QWidget* makeScrolledColumn(AppModel& model);
    QWidget* makeFooter(AppModel& model);
    QWidget* makeStatus(AppModel& model);
    void alignColumns();
    void setMargins(int left, int right, int scrollBar);
    void bringIntoSight(QWidget* control);
    /// Scrolls no further than needed to show the section, or its beginning.
    void scrollToSection(const QWidget& section);
    /// Does not scroll if the top edge of the card is in sight.
    void scrollUpTo(const QWidget& card);

    FolderDrops drops_;
    FocusRing focusRing_{*this};
    FocusKeeper focusKeeper_{focusRing_};
    QVBoxLayout* column_ = nullptr;
    QVBoxLayout* footer_ = nullptr;
    QVBoxLayout* status_ = nullptr;
    QScrollArea* scrollArea_;
};

} // namespace torvo::app
