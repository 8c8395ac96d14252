#include "Views/ChannelsCard.h"

#include "Binding.h"
#include "Controls/Announcements.h"
#include "Controls/DisclosureHeader.h"
#include "Controls/DisclosureSection.h"
#include "Controls/Labels.h"
#include "Controls/MessagePlate.h"
#include "Controls/ProgressBar.h"
#include "Controls/StatusIcon.h"
#include "Controls/WrappingLabel.h"
#include "Text.h"

#include <QAction>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <utility>

namespace torvo::app {

namespace {

/// In the order of the device's channels, which is not that of the enumeration.
constexpr std::array<std::pair<ChannelRole, const char*>, 6> orderedRoles{{
    {ChannelRole::kick, "CH1 KICK"},
    {ChannelRole::clap, "CH2 CLAP"},
    {ChannelRole::closedHat, "CH3 CLOSED HAT"},
    {ChannelRole::openHat, "CH4 OPEN HAT"},
    {ChannelRole::snare, "CH5 SNARE"},
    {ChannelRole::perc, "CH6-8 PERC"},
}};

constexpr int countsHeight = static_cast<int>(orderedRoles.size()) / 2 * CountRow::height;
constexpr int countsGap = 4;
constexpr int platePadding = 12;
constexpr int plateMargin = 6; ///< above and below a message, with and without its plate

// What `canGenerate` requires.
constexpr qsizetype minKicks = 1;
constexpr qsizetype minPercussion = 3;
constexpr qsizetype minUniform = 8;

using Standing = CountRow::Standing;

/// Percussion replaces missing samples of every kind except the kick.
Standing standing(const RoleBuckets& buckets, ChannelRole role) {
    const bool hasPercussion = std::ssize(buckets.perc) >= minPercussion;
    if (role == ChannelRole::perc)
        return hasPercussion ? Standing::enough : Standing::blocking;
    if (!buckets.samples(role).empty())
        return Standing::enough;
    if (role == ChannelRole::kick)
        return Standing::blocking;
    return hasPercussion ? Standing::filledIn : Standing::absent;
}

} // namespace

ChannelsCard::ChannelsCard(AppModel& model, QWidget* parent)
    : Card(tr("CHANNELS"), parent),
      model_(model),
      plate_(new MessagePlate),
      icon_(new StatusIcon),
      message_(new WrappingLabel),
      scanning_(makeScanning()),
      roleCounts_(makeRoleCounts()),
      uniformCounts_(new QWidget),
      loopCount_(new CountRow(tr("LOOPS"))),
      stabCount_(new CountRow(tr("STABS"))),
      ignoredFolders_(new DisclosureSection(tr("IGNORED FOLDERS"))),
      ignoredFiles_(new DisclosureSection(tr("IGNORED FILES"))) {
    for (QWidget* result :
         std::initializer_list<QWidget*>{message_, roleCounts_, loopCount_, stabCount_})
        setAnnounced(*result);
    icon_->setKind(StatusKind::failure);
    ignoredFolders_->setObjectName(QStringLiteral("ignoredFolders"));
    ignoredFiles_->setObjectName(QStringLiteral("ignoredFiles"));

    auto* words = new QHBoxLayout(plate_);
    words->setSpacing(12);
    words->addWidget(icon_, 0, Qt::AlignTop);
    words->addWidget(message_, 1);
    // Use the first column and the height of the drum counts.
    auto* uniform = new QGridLayout(uniformCounts_);
    uniform->setContentsMargins(0, 0, 0, 0);
    uniform->setHorizontalSpacing(MarloTheme::columnGap);
    uniform->addWidget(loopCount_, 0, 0);
    uniform->addWidget(stabCount_, 1, 0);
    uniform->addWidget(new QWidget, 2, 1); // without it, the layout leaves no gap
    uniform->setRowStretch(2, 1);
    for (const int column : {0, 1})
        uniform->setColumnStretch(column, 1);
    uniformCounts_->setFixedHeight(countsHeight);
    sections_ = new QWidget;
    auto* sections = new QVBoxLayout(sections_);
    sections->setContentsMargins(0, 0, 0, 0);
    sections->setSpacing(0);
    sections->addWidget(ignoredFolders_);
    sections->addWidget(ignoredFiles_);
    body_ = new QWidget;
    auto* findings = new QVBoxLayout(body_);
    findings->setContentsMargins(0, 0, 0, 0);
    findings->setSpacing(countsGap);
    for (QWidget* part :
         std::initializer_list<QWidget*>{plate_, scanning_, roleCounts_, uniformCounts_, sections_})
        findings->addWidget(part);
    // Surplus height goes to the lists as far as they have rows, then to the space below.
    findings->setStretchFactor(sections_, 1);
    findings->addStretch();

    column()->addWidget(body_);
    QSizePolicy policy = sizePolicy();
    policy.setVerticalStretch(1);
    setSizePolicy(policy);

    for (const auto* section : {ignoredFolders_, ignoredFiles_})
        connect(section, &DisclosureSection::rowMenuOpening, this, &ChannelsCard::offerToShow);
    bind(
        model, this, [this] { render(); }, &AppModel::scanStateChanged,
        &AppModel::sourceFolderChanged, &AppModel::generationModeChanged);
}

QWidget* ChannelsCard::makeScanning() {
    auto* row = new QWidget;
    auto* bar = new ProgressBar;
    bar->setRange(0, 0);
    bar->setAccessibleName(tr("SCANNING FILES…"));
    auto* column = new QVBoxLayout(row);
    column->setContentsMargins(0, plateMargin, 0, 0);
    column->setSpacing(MarloTheme::grid);
    column->addWidget(
        makeLabel(tr("SCANNING FILES…"), 13, MarloTheme::FontCut::medium, MarloTheme::ink));
    column->addWidget(bar);
    return row;
}

QWidget* ChannelsCard::makeRoleCounts() {
    auto* counts = new QWidget;
    auto* grid = new QGridLayout(counts);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(MarloTheme::columnGap);
    grid->setVerticalSpacing(0);
    for (const int column : {0, 1})
        grid->setColumnStretch(column, 1);
    const int rows = static_cast<int>(orderedRoles.size()) / 2;
    for (int index = 0; const auto& [role, label] : orderedRoles) {
        auto* row = new CountRow(QString::fromLatin1(label));
        grid->addWidget(row, index % rows, index / rows);
        roleRows_.push_back(row);
        ++index;
    }
    return counts;
}

void ChannelsCard::render() {
    const AppModel::ScanState& state = model_.scanState();
    const auto* ready = std::get_if<AppModel::Ready>(&state);
    const auto* failed = std::get_if<AppModel::Failed>(&state);
    const bool isIdle = std::holds_alternative<AppModel::Idle>(state);
    const bool isScanning = std::holds_alternative<AppModel::Scanning>(state);

    if (failed)
        showMessage(toQString(failed->description), MarloTheme::danger);
    else if (isIdle && model_.isUpdatingExistingBank())
        showMessage(tr("Existing QZT508 folder selected."), MarloTheme::ink);
    else if (isIdle)
        showMessage(tr("Choose or drop a source folder to scan."), MarloTheme::muted);
    message_->setCopyable(failed);
    message_->setFont(failed ? MarloTheme::font(15, MarloTheme::FontCut::semiBold)
                             : MarloTheme::font(13, MarloTheme::FontCut::medium));
    plate_->setFailed(failed);
    plate_->layout()->setContentsMargins(failed ? platePadding : 0, plateMargin,
                                         failed ? platePadding : 0, plateMargin);
    reserveRoom(isScanning);
    // Must happen before the counts appear, because they are announced then.
    if (ready)
        showCounts(*ready->report);
    const auto showsCountsOf = [&](GenerationMode mode) {
        return ready && ready->report->mode == mode;
    };
    const std::array<std::pair<QWidget*, bool>, 9> parts{
        {{plate_, isIdle || failed},
         {icon_, failed},
         {message_, isIdle || failed},
         {scanning_, isScanning},
         {roleCounts_, showsCountsOf(GenerationMode::drums)},
         {uniformCounts_, ready && !showsCountsOf(GenerationMode::drums)},
         {loopCount_, showsCountsOf(GenerationMode::loops)},
         {stabCount_, showsCountsOf(GenerationMode::stabs)},
         {sections_, ready}}};
    // Hide parts before showing others, because the card would keep the height of both.
    for (const bool visible : {false, true})
        for (const auto& [part, isShown] : parts)
            if (isShown == visible)
                part->setVisible(visible);
    showIgnored(ready ? ready->report : nullptr);
}

void ChannelsCard::showMessage(const QString& text, QColor color) {
    setTextColor(*message_, color);
    if (text != message_->text())
        announceAfter(*message_, [&] { message_->setText(text); });
}

void ChannelsCard::reserveRoom(bool isScanning) {
    // Open lists stay open across scans, and their height is kept.
    if (!isScanning)
        roomForSections_ = 2 * DisclosureHeaderStyle::height;
    else if (sections_->isVisible()) {
        // A list that has just been closed may still have its former height.
        const int hint = sections_->sizeHint().height();
        roomForSections_ = std::clamp(sections_->height(), hint, hint + spareHeightForLists());
    }
    body_->setMinimumHeight(countsHeight + countsGap + roomForSections_);
}

void ChannelsCard::showCounts(const ScanReport& report) {
    const RoleBuckets& buckets = report.buckets;
    QStringList names;
    for (std::size_t index = 0; index < roleRows_.size(); ++index) {
        const ChannelRole role = orderedRoles[index].first;
        roleRows_[index]->setCount(std::ssize(buckets.samples(role)), standing(buckets, role),
                                   role == ChannelRole::kick ? minKicks : minPercussion);
        names.append(roleRows_[index]->accessibleName());
    }
    roleCounts_->setAccessibleName(names.join(QStringLiteral(", ")));
    const auto uniform =
        BankGenerator{}.canGenerate(buckets, report.mode) ? Standing::enough : Standing::blocking;
    loopCount_->setCount(std::ssize(buckets.loop), uniform, minUniform);
    stabCount_->setCount(std::ssize(buckets.stab), uniform, minUniform);
}

bool ChannelsCard::event(QEvent* event) {
    const bool isHandled = Card::event(event);
    // Surplus height goes to the open lists only.
    if (event->type() == QEvent::LayoutRequest)
        setMaximumHeight(sizeHint().height() + spareHeightForLists());
    return isHandled;
}

int ChannelsCard::spareHeightForLists() const {
    return ignoredFolders_->maxExtraHeight() + ignoredFiles_->maxExtraHeight();
}

void ChannelsCard::offerToShow(const QString& path, QAction* show) {
    model_.lookUpIgnoredItem(path.toStdString(), [this,
                                                  show = QPointer(show)](const FileURL& item) {
        if (!show) // the menu has been closed
            return;
        connect(show, &QAction::triggered, this, [this, item] { model_.showIgnoredItem(item); });
        show->setEnabled(true);
    });
}

void ChannelsCard::showIgnored(const std::shared_ptr<const ScanReport>& report) {
    if (!report) {
        ignoredFolders_->setItems(nullptr);
        ignoredFiles_->setItems(nullptr);
        return;
    }
    // The lists share ownership of the report.
    ignoredFolders_->setItems({report, &report->ignoredFolders});
    ignoredFiles_->setItems({report, &report->ignoredFiles});
}

} // namespace torvo::app
