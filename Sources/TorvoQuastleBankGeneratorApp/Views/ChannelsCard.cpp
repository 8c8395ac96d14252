#include "ChannelsCard.h"

#include "Binding.h"
#include "Controls/Card.h"
#include "Controls/DisclosureSection.h"
#include "Controls/Labels.h"
#include "Controls/ProgressBar.h"
#include "Controls/WrappingLabel.h"
#include "Text.h"

#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <array>
#include <utility>

namespace torvo::app {

namespace {

/// The device's channel order, which is not the order of the roles.
constexpr std::array<std::pair<ChannelRole, const char*>, 6> orderedRoles{{
    {ChannelRole::kick, "CH1 KICK"},
    {ChannelRole::clap, "CH2 CLAP"},
    {ChannelRole::closedHat, "CH3 CLOSED HAT"},
    {ChannelRole::openHat, "CH4 OPEN HAT"},
    {ChannelRole::snare, "CH5 SNARE"},
    {ChannelRole::perc, "CH6-8 PERC"},
}};

} // namespace

ChannelsCard::ChannelsCard(AppModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      message_(new WrappingLabel),
      scanning_(makeScanning()),
      roleCounts_(makeRoleCounts()),
      loopCount_(new CountRow(tr("LOOPS"))),
      stabCount_(new CountRow(tr("STABS"))),
      ignoredFolders_(new DisclosureSection(tr("IGNORED FOLDERS"))),
      ignoredFiles_(new DisclosureSection(tr("IGNORED FILES"))) {
    message_->setFont(MarloTheme::font(13, MarloTheme::FontCut::medium));
    ignoredFolders_->setObjectName(QStringLiteral("ignoredFolders"));
    ignoredFiles_->setObjectName(QStringLiteral("ignoredFiles"));

    auto* card = new Card(tr("CHANNELS"));
    for (QWidget* part :
         std::initializer_list<QWidget*>{message_, scanning_, roleCounts_, loopCount_, stabCount_})
        card->column()->addWidget(part);
    auto* sections = new QVBoxLayout;
    sections->setSpacing(0);
    sections->addWidget(ignoredFolders_);
    sections->addWidget(ignoredFiles_);
    card->column()->addLayout(sections);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(card);

    bind(
        model, this, [this] { render(); }, &AppModel::scanStateChanged,
        &AppModel::sourceFolderChanged);
}

QWidget* ChannelsCard::makeScanning() {
    auto* row = new QWidget;
    auto* bar = new ProgressBar;
    bar->setRange(0, 0);
    bar->setAccessibleName(tr("SCANNING FILES…"));
    auto* column = new QVBoxLayout(row);
    column->setContentsMargins(0, 0, 0, 0);
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
    grid->setHorizontalSpacing(5 * MarloTheme::grid);
    grid->setVerticalSpacing(0);
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

    if (failed) {
        message_->setText(toQString(failed->description));
        setTextColor(*message_, MarloTheme::danger);
    } else if (model_.isUpdatingExistingBank()) {
        message_->setText(tr("Existing QZT508 folder selected."));
        setTextColor(*message_, MarloTheme::ink);
    } else {
        message_->setText(tr("Choose or drop a source folder to scan."));
        setTextColor(*message_, MarloTheme::muted);
    }
    message_->setVisible(isIdle || failed);
    scanning_->setVisible(std::holds_alternative<AppModel::Scanning>(state));

    const auto showsCountsOf = [&](GenerationMode mode) {
        return ready && ready->report->mode == mode;
    };
    roleCounts_->setVisible(showsCountsOf(GenerationMode::drums));
    loopCount_->setVisible(showsCountsOf(GenerationMode::loops));
    stabCount_->setVisible(showsCountsOf(GenerationMode::stabs));
    ignoredFolders_->setVisible(ready);
    ignoredFiles_->setVisible(ready);
    showReport(ready ? ready->report : nullptr);
}

void ChannelsCard::showReport(const std::shared_ptr<const ScanReport>& report) {
    if (!report) {
        ignoredFolders_->setItems(nullptr);
        ignoredFiles_->setItems(nullptr);
        return;
    }
    const RoleBuckets& buckets = report->buckets;
    for (std::size_t index = 0; index < roleRows_.size(); ++index)
        roleRows_[index]->setCount(std::ssize(buckets.samples(orderedRoles[index].first)));
    loopCount_->setCount(std::ssize(buckets.loop));
    stabCount_->setCount(std::ssize(buckets.stab));
    // Shared with the report, whose life they prolong.
    ignoredFolders_->setItems({report, &report->ignoredFolders});
    ignoredFiles_->setItems({report, &report->ignoredFiles});
}

} // namespace torvo::app
