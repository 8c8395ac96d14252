#include "Controls/DisclosureSection.h"

#include "Controls/DisclosureHeader.h"
#include "Controls/IgnoredItemDelegate.h"
#include "Controls/IgnoredItemsList.h"
#include "Controls/Labels.h"
#include "MarloTheme.h"
#include "Text.h"

#include <QLabel>
#include <QListView>
#include <QLocale>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace torvo::app {

namespace {

constexpr int minRowsShown = 7; ///< if the list has that many
constexpr int listPadding = 4;

/// The word for a reason in the summary of a header.
QString kind(const std::string& reason) {
    static const std::map<std::string, QString, std::less<>> kinds{
        {"Unclassified sample", DisclosureSection::tr("unclassified")},
        {"Unsupported audio file", DisclosureSection::tr("unsupported")},
        {"Ignored hidden or sidecar file", DisclosureSection::tr("hidden or sidecar")},
        {"Ignored v1 folder", DisclosureSection::tr("crash, ride or shaker")}};
    const auto found = kinds.find(reason);
    return found == kinds.end() ? toQString(reason) : found->second;
}

/// "1,929 unclassified · 13 unsupported", the most frequent first.
QString kinds(const std::vector<IgnoredItem>& items) {
    std::map<std::string, int, std::less<>> counts;
    auto last = counts.end();
    for (const IgnoredItem& item : items) {
        // Most items have the reason of the one before; a lookup for each of half a million takes
        // longer than a frame.
        if (last == counts.end() || last->first != item.reason)
            last = counts.try_emplace(item.reason, 0).first;
        ++last->second;
    }
    std::vector<std::pair<std::string, int>> sorted(counts.begin(), counts.end());
    std::ranges::stable_sort(sorted, std::greater{}, &std::pair<std::string, int>::second);
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    QStringList texts;
    for (const auto& [reason, count] : sorted)
        texts.append(english.toString(count) + QLatin1Char(' ') + kind(reason));
    return texts.join(QStringLiteral(" · "));
}

} // namespace

DisclosureSection::DisclosureSection(const QString& title, QWidget* parent)
    : QWidget(parent),
      header_(new DisclosureHeader(title)),
      none_(makeLabel(tr("NONE"), 12, MarloTheme::FontCut::regular, MarloTheme::muted)),
      list_(new IgnoredItemsList) {
    setAccessibleName(title);
    none_->setContentsMargins(24, 2, 0, MarloTheme::grid);

    list_->setAccessibleName(title);
    list_->setModel(&model_);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(header_);
    column->addWidget(none_);
    column->addWidget(list_);
    connect(header_, &QAbstractButton::toggled, this, &DisclosureSection::setExpanded);
    connect(header_, &QAbstractButton::clicked, this, [this] {
        if (isExpanded_)
            Q_EMIT opened();
    });
    connect(list_, &IgnoredItemsList::rowMenuOpening, this, &DisclosureSection::rowMenuOpening);
    showContent();
}

QListView* DisclosureSection::list() const {
    return list_;
}

void DisclosureSection::setItems(IgnoredItemsModel::Items items) {
    const QString itemKinds = items ? kinds(*items) : QString();
    if (!model_.setItems(std::move(items)))
        return;
    header_->setCount(model_.rowCount(), itemKinds);
    list_->scrollToTop();
    showContent();
}

void DisclosureSection::setExpanded(bool expanded) {
    isExpanded_ = expanded;
    header_->setChecked(expanded);
    showContent();
}

void DisclosureSection::showContent() {
    const int rows = std::clamp(model_.rowCount(), 1, minRowsShown);
    const int height = rows * IgnoredItemDelegate::rowHeight + 2 * listPadding;
    list_->setMinimumHeight(height);
    list_->setMaximumHeight(height + maxExtraHeight());
    // A list that shows all its rows leaves the space to the other list.
    list_->setSizePolicy(QSizePolicy::Expanding,
                         maxExtraHeight() > 0 ? QSizePolicy::Expanding : QSizePolicy::Fixed);
    none_->setVisible(isExpanded_ && model_.rowCount() == 0);
    list_->setVisible(isExpanded_ && model_.rowCount() > 0);
}

int DisclosureSection::maxExtraHeight() const {
    if (!isExpanded_)
        return 0;
    return std::max(0, model_.rowCount() - minRowsShown) * IgnoredItemDelegate::rowHeight;
}

} // namespace torvo::app
