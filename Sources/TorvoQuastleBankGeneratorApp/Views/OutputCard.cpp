#include "Views/OutputCard.h"

#include "Binding.h"
#include "Controls/Announcements.h"
#include "Controls/ElidedPathLabel.h"
#include "Controls/Labels.h"
#include "Controls/MarloButton.h"
#include "Panels.h"
#include "Text.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace torvo::app {

namespace {

constexpr int captionGap = 16;
constexpr int mainButtonWidth = 180; ///< whatever its label

QString exportText(const AppModel& model) {
    if (model.isUpdatingExistingBank())
        return shownPath(*model.sourceFolder());
    if (const auto root = model.expectedExportRoot())
        return shownPath(*root);
    if (model.exportFolder())
        return shownPath(*model.exportFolder());
    return OutputCard::tr("Choose output folder.");
}

ElidedPathLabel* makePath() {
    auto* path = new ElidedPathLabel;
    path->setFont(MarloTheme::font(13, MarloTheme::FontCut::regular));
    return path;
}

/// A caption followed by a path and a note. The path is elided in favour of the note.
QWidget* makePathRow(const QString& caption, ElidedPathLabel* path, QLabel* note = nullptr) {
    auto* title = makeCaption(caption);
    auto* container = new QWidget;
    auto* row = new QHBoxLayout(container);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(title);
    row->addSpacing(captionGap);
    row->addWidget(path, note ? 0 : 1);
    if (note) {
        path->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
        note->setContentsMargins(captionGap, 0, 0, 0);
        row->addWidget(note);
        row->addStretch(1);
    }
    return container;
}

} // namespace

OutputCard::OutputCard(AppModel& model, QWidget* parent)
    : Card(tr("OUTPUT"), parent),
      model_(model),
      choose_(new MarloButton(tr("CHOOSE FOLDER"), MarloButton::Kind::ordinary)),
      main_(new MarloButton({}, MarloButton::Kind::prominent)),
      target_(makePath()),
      replacement_(makeCaption(tr("exists, will be replaced"))),
      mappingFile_(makePath()),
      mappingRow_(makePathRow(tr("JSON"), mappingFile_)) {
    choose_->setObjectName(QStringLiteral("chooseExportFolder"));
    choose_->setAccessibleDescription(tr("Output folder"));
    main_->setObjectName(QStringLiteral("mainButton"));
    target_->setObjectName(QStringLiteral("targetPath"));
    replacement_->setObjectName(QStringLiteral("replacement"));
    replacement_->setAccessibleName(tr("The target exists and will be replaced"));
    setAnnounced(*replacement_);
    mappingFile_->setObjectName(QStringLiteral("mappingFile"));
    setAnnounced(*mappingFile_);

    // GENERATE and APPLY share one place, which does not depend on other buttons or paths.
    main_->setMinimumWidth(mainButtonWidth);
    auto* mapping = new QHBoxLayout;
    mapping->addWidget(mappingRow_);
    column()->addWidget(makePathRow(tr("TARGET"), target_, replacement_));
    headerRow()->addSpacing(2 * MarloTheme::grid);
    headerRow()->addLayout(mapping, 1);
    headerRow()->addSpacing(MarloTheme::grid);
    headerRow()->addWidget(choose_);
    headerRow()->addWidget(main_);

    // Queued, so that the click returns before the panel opens.
    connect(choose_, &QAbstractButton::clicked, this, &OutputCard::chooseFolder,
            Qt::QueuedConnection);
    connect(main_, &QAbstractButton::clicked, this, &OutputCard::startMainAction);
    bind(
        model, this, [this] { render(); }, &AppModel::sourceFolderChanged,
        &AppModel::exportFolderChanged, &AppModel::generationModeChanged,
        &AppModel::scanStateChanged, &AppModel::runStateChanged, &AppModel::currentDocumentChanged,
        &AppModel::exportRootExistsChanged, &AppModel::isReportOfSourceChanged);
    bind(
        model, this, [this] { renderMappingFile(); }, &AppModel::lastJSONURLChanged);
}

void OutputCard::render() {
    const bool updating = model_.isUpdatingExistingBank();
    const bool enabled =
        !model_.hasUnfinishedRun() &&
        (updating ? model_.exportRootExists() : model_.canGenerate() && model_.isReportOfSource());
    choose_->setVisible(!updating);
    main_->setText(updating ? tr("APPLY") : tr("GENERATE"));
    if (main_->isEnabled() != enabled)
        update(); // the edge around it; a run renders for every bank
    main_->setEnabled(enabled);
    // Intended: the same hint for every reason.
    main_->setToolTip(updating || enabled ? QString() : tr("Choose an output folder above!"));

    target_->setPath(exportText(model_));
    const bool named = updating || model_.exportFolder();
    setTextColor(*target_, named ? MarloTheme::ink : MarloTheme::muted);
    // Do not show the note while a run writes the folder.
    replacement_->setVisible(model_.exportRootExists() && !updating && !model_.hasUnfinishedRun());
}

void OutputCard::renderMappingFile() {
    const auto& url = model_.lastJSONURL();
    announceAfter(*mappingFile_, [&] {
        mappingFile_->setPath(url ? shownPath(*url) : QString());
        mappingRow_->setVisible(url.has_value());
    });
}

void OutputCard::chooseFolder() {
    // Intended: a cancelled panel clears the chosen folder, unlike the panel for the source.
    model_.setExportFolder(model_.pickFolder(exportFolderTitle));
}

void OutputCard::startMainAction() {
    // The folder may have been removed since APPLY was enabled.
    if (model_.isUpdatingExistingBank())
        model_.applyMetadataIfFolderExists();
    else
        model_.generateBanks();
}

void OutputCard::paintEvent(QPaintEvent* event) {
    Card::paintEvent(event);
    if (main_->isEnabled())
        return;
    // The fixed colours of a disabled button are hardly visible on the card.
    QPainter painter(this);
    paintRoundedRect(painter, QRectF(main_->geometry()).adjusted(-1, -1, 1, 1),
                     MarloButtonStyle::cornerRadius + 1, Qt::transparent, outlineColor);
}

bool OutputCard::event(QEvent* event) {
    // The user may have changed the folders in a file manager.
    if (event->type() == QEvent::WindowActivate)
        model_.inspectFolders();
    return Card::event(event);
}

} // namespace torvo::app
