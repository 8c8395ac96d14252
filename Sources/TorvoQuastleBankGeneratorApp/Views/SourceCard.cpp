#include "Views/SourceCard.h"

#include "Binding.h"
#include "Controls/DropZone.h"
#include "Controls/ElidedLabel.h"
#include "Controls/ElidedPathLabel.h"
#include "Controls/FolderDrops.h"
#include "Controls/Labels.h"
#include "Controls/MarloButton.h"
#include "Panels.h"
#include "Text.h"

#include <QHBoxLayout>

namespace torvo::app {

namespace {

QString sourceHint(const AppModel& model) {
    if (model.isUpdatingExistingBank())
        return SourceCard::tr("Set metadata below, then apply it to the selected QZT508 folder.");
    switch (model.generationMode()) {
    case GenerationMode::drums:
        return SourceCard::tr(
            "Drag a raw sample library with samples separated in folders by drum type.\n"
            "The samples will be jumbled at random until 99 banks are created.");
    case GenerationMode::loops:
        return SourceCard::tr("Drag a raw loop library.\n"
                              "The samples will be jumbled at random until 99 banks are created.");
    case GenerationMode::stabs:
        return SourceCard::tr("Drag a raw stab library.\n"
                              "The samples will be jumbled at random until 99 banks are created.");
    }
    return {};
}

} // namespace

SourceCard::SourceCard(AppModel& model, FolderDrops& drops, QWidget* parent)
    : Card(tr("SOURCE"), parent), model_(model) {
    auto* name = new ElidedLabel;
    name->setFont(MarloTheme::font(18, MarloTheme::FontCut::semiBold));
    setTextColor(*name, MarloTheme::ink);
    auto* path = new ElidedPathLabel;
    path->setFont(MarloTheme::font(12, MarloTheme::FontCut::regular));
    setTextColor(*path, MarloTheme::muted);
    auto* chosen = new QWidget;
    auto* lines = new QVBoxLayout(chosen);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    lines->addWidget(name);
    lines->addWidget(path);
    auto* clear = new MarloButton(tr("CLEAR"), MarloButton::Kind::ordinary);
    auto* choose = new MarloButton(tr("CHOOSE FOLDER"), MarloButton::Kind::ordinary);
    choose->setObjectName(QStringLiteral("chooseSourceFolder"));
    choose->setAccessibleDescription(tr("Source folder"));
    auto* dropZone = new DropZone;

    headerRow()->addStrut(name->sizeHint().height() + path->sizeHint().height());
    headerRow()->addSpacing(MarloTheme::grid);
    headerRow()->addWidget(chosen, 1);
    headerRow()->addSpacing(MarloTheme::grid);
    headerRow()->addWidget(clear);
    headerRow()->addWidget(choose);
    column()->addWidget(dropZone);

    connect(clear, &QAbstractButton::clicked, this, [this] { model_.clearSource(); });
    // Queued, so that the click returns before the panel opens; a screen reader would run into a
    // timeout.
    connect(choose, &QAbstractButton::clicked, this, &SourceCard::chooseFolder,
            Qt::QueuedConnection);
    connect(dropZone, &QAbstractButton::clicked, this, &SourceCard::chooseFolder,
            Qt::QueuedConnection);
    connect(&drops, &FolderDrops::targetedChanged, dropZone, &DropZone::setTargeted);
    connect(&drops, &FolderDrops::folderDropped, &model, &AppModel::chooseSourceFolder);

    bind(
        model, this,
        [this, chosen, name, path, clear, dropZone] {
            clear->setEnabled(model_.canClearSource());
            dropZone->setHint(sourceHint(model_));
            const auto& folder = model_.sourceFolder();
            dropZone->setQuiet(folder.has_value());
            name->setText(folder ? toQString(folder->lastPathComponent()) : QString());
            path->setPath(folder ? shownPath(*folder) : QString());
            chosen->setVisible(folder.has_value());
            headerRow()->setStretch(0, folder ? 0 : 1);
        },
        &AppModel::sourceFolderChanged, &AppModel::currentDocumentChanged,
        &AppModel::generationModeChanged);
    bind(
        model, this, [this] { busyCursor_.setBusy(model_.isResolvingSource()); },
        &AppModel::isResolvingSourceChanged);
}

void SourceCard::chooseFolder() {
    if (const auto folder = model_.pickFolder(sourceFolderTitle))
        model_.chooseSourceFolder(*folder);
}

} // namespace torvo::app
