#include "ContentView.h"

#include "AppModel.h"
#include "Binding.h"
#include "Controls/DisclosureSection.h"
#include "Controls/DropZone.h"
#include "Controls/ScrollShadow.h"
#include "Controls/ThreeWayModeToggle.h"
#include "MarloTheme.h"
#include "Views/ChannelsCard.h"
#include "Views/HeaderView.h"
#include "Views/MetadataCard.h"
#include "Views/OutputCard.h"
#include "Views/RunMessage.h"
#include "Views/SourceCard.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace torvo::app {

namespace {

constexpr int columnWidth = 880;
constexpr int sideMargin = (columnWidth - MarloTheme::cardWidth) / 2;
constexpr int minSideMargin = 12; ///< holds the scroll bar
constexpr int topMargin = 2 * MarloTheme::grid;
constexpr int cardSpacing = 12;
constexpr int footerMargin = MarloTheme::grid; ///< above and below the output
constexpr int statusMargin = 4;                ///< above and below the state of the run
constexpr double segmentWidth = 132;
constexpr double modeHeight = 38;

} // namespace

ContentView::ContentView(AppModel& model, QWidget* parent)
    : QWidget(parent), scrollArea_(new QScrollArea) {
    setMinimumSize(usualMinSize);
    drops_.watch(*this);

    scrollArea_->setWidgetResizable(true);
    scrollArea_->setFrameShape(QFrame::NoFrame);
    scrollArea_->setFocusPolicy(Qt::NoFocus);
    scrollArea_->setWidget(makeScrolledColumn(model));
    scrollArea_->viewport()->installEventFilter(this);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(scrollArea_, 1);
    layout->addWidget(makeFooter(model));
    layout->addWidget(makeStatus(model));
    new ScrollShadow(*scrollArea_);
    setMargins(sideMargin, sideMargin, 0);
    connect(&focusRing_, &FocusRing::moved, this, &ContentView::bringIntoSight);
    for (const auto* section : findChildren<DisclosureSection*>())
        connect(section, &DisclosureSection::opened, this,
                [this, section] { scrollToSection(*section); });
    // Enter opens the panel right after the start, without a focus ring before the first key press.
    findChild<DropZone*>()->setFocus(Qt::NoFocusReason);
}

QWidget* ContentView::makeScrolledColumn(AppModel& model) {
    auto* modes = new ThreeWayModeToggle({allGenerationModes.begin(), allGenerationModes.end()},
                                         segmentWidth, modeHeight);
    connect(modes, &ThreeWayModeToggle::modeChosen, &model, &AppModel::setGenerationMode);
    bind(
        model, this, [&model, modes] { modes->setSelection(model.generationMode()); },
        &AppModel::generationModeChanged);

    auto* source = new SourceCard(model, drops_);
    // Choosing the same folder again scans it again, and nothing else moves.
    connect(&model, &AppModel::sourceFolderChanged, this,
            [this, &model, source, shown = model.sourceFolder()]() mutable {
                if (std::exchange(shown, model.sourceFolder()) != model.sourceFolder())
                    scrollUpTo(*source);
            });

    auto* content = new QWidget;
    column_ = new QVBoxLayout(content);
    column_->setSpacing(cardSpacing);
    column_->addWidget(new HeaderView(model));
    column_->addWidget(modes, 0, Qt::AlignLeft);
    column_->addWidget(source);
    column_->addWidget(new ChannelsCard(model));
    column_->addWidget(new MetadataCard(model));
    column_->addStretch();
    return content;
}

QWidget* ContentView::makeFooter(AppModel& model) {
    auto* content = new QWidget;
    footer_ = new QVBoxLayout(content);
    footer_->setSpacing(cardSpacing);
    footer_->addWidget(new OutputCard(model));
    return content;
}

QWidget* ContentView::makeStatus(AppModel& model) {
    auto* content = new QWidget;
    status_ = new QVBoxLayout(content);
    status_->addWidget(new RunMessage(model));
    return content;
}

void ContentView::bringIntoSight(QWidget* control) {
    if (scrollArea_->widget()->isAncestorOf(control))
        scrollArea_->ensureWidgetVisible(control);
}

void ContentView::scrollToSection(const QWidget& section) {
    // The layouts give the opened section its height.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    const int top = section.mapTo(scrollArea_->widget(), QPoint()).y();
    const int bottom = top + section.height() + ScrollShadow::shadowHeight;
    QScrollBar* const bar = scrollArea_->verticalScrollBar();
    const int lowest = std::max(bar->value(), bottom - scrollArea_->viewport()->height());
    bar->setValue(std::min(lowest, top - MarloTheme::grid));
}

void ContentView::scrollUpTo(const QWidget& card) {
    const int top = card.mapTo(scrollArea_->widget(), QPoint()).y();
    QScrollBar* const bar = scrollArea_->verticalScrollBar();
    bar->setValue(std::min(bar->value(), top - cardSpacing));
}

QSize ContentView::sizeHint() const {
    const int height = column_->totalHeightForWidth(columnWidth) + footer_->sizeHint().height() +
                       status_->sizeHint().height();
    return QSize(columnWidth, height).expandedTo(minimumSize());
}

void ContentView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    alignColumns();
}

bool ContentView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        alignColumns();
    return QWidget::eventFilter(watched, event);
}

bool ContentView::focusNextPrevChild(bool next) {
    QWidget* const focused = window()->focusWidget();
    const bool isKept = focused && isAncestorOf(focused) && focusKeeper_.keep(*focused);
    return !isKept && QWidget::focusNextPrevChild(next);
}

void ContentView::alignColumns() {
    const int left = std::max(minSideMargin, (width() - MarloTheme::cardWidth) / 2);
    const int right = std::max(minSideMargin, width() - left - MarloTheme::cardWidth);
    // The scroll bar takes its width from the margin, so that both columns keep the same right
    // edge.
    setMargins(left, right, width() - scrollArea_->viewport()->width());
}

void ContentView::setMargins(int left, int right, int scrollBar) {
    column_->setContentsMargins(left, topMargin, right - scrollBar, footerMargin);
    // Showing or hiding the scroll bar during a layout discards the request for another one.
    column_->activate();
    footer_->setContentsMargins(left, footerMargin, right, footerMargin);
    status_->setContentsMargins(left, statusMargin, right, statusMargin);
}

void ContentView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), MarloTheme::surface);
    painter.fillRect(0, scrollArea_->geometry().bottom() + 1, width(), 1, MarloTheme::line);
    const QRect status = status_->parentWidget()->geometry();
    painter.fillRect(status, MarloTheme::panel);
    painter.fillRect(0, status.top(), width(), 1, MarloTheme::line);
}

} // namespace torvo::app
