#include "SourceCard.h"

#include "Binding.h"
#include "Controls/Card.h"
#include "Controls/DropZone.h"
#include "Controls/ElidedPathLabel.h"
#include "Controls/Labels.h"
#include "Controls/MarloButton.h"
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

SourceCard::SourceCard(AppModel& model, QWidget* parent) : QWidget(parent), model_(model) {
    auto* path = new ElidedPathLabel;
    path->setFont(MarloTheme::font(13, MarloTheme::FontCut::regular));
    setTextColor(*path, MarloTheme::muted);
    auto* clear = new MarloButton(tr("CLEAR"), MarloButton::Kind::ordinary);
    auto* choose = new MarloButton(tr("CHOOSE FOLDER"), MarloButton::Kind::ordinary);
    choose->setObjectName(QStringLiteral("chooseSourceFolder"));
    auto* dropZone = new DropZone;

    auto* card = new Card(tr("SOURCE"));
    card->headerRow()->addSpacing(MarloTheme::grid);
    card->headerRow()->addWidget(path, 1);
    card->headerRow()->addSpacing(MarloTheme::grid);
    card->headerRow()->addWidget(clear);
    card->headerRow()->addWidget(choose);
    card->column()->addWidget(dropZone);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(card);

    connect(clear, &QAbstractButton::clicked, this, [this] { model_.clearSource(); });
    // Queued: the press returns before the panel opens, so that it does not time out for a screen
    // reader.
    connect(choose, &QAbstractButton::clicked, this, &SourceCard::chooseFolder,
            Qt::QueuedConnection);
    connect(dropZone, &QAbstractButton::clicked, this, &SourceCard::chooseFolder,
            Qt::QueuedConnection);
    connect(dropZone, &DropZone::folderDropped, this,
            [this](const FileURL& folder) { model_.setSourceFolder(folder); });

    bind(
        model, this,
        [this, path, clear, dropZone] {
            clear->setEnabled(model_.canClearSource());
            dropZone->setHint(sourceHint(model_));
            path->setPath(model_.sourceFolder() ? shownPath(*model_.sourceFolder()) : QString());
            path->setVisible(model_.sourceFolder().has_value());
            auto* row = static_cast<Card*>(path->parentWidget())->headerRow();
            row->setStretch(0, model_.sourceFolder() ? 0 : 1);
        },
        &AppModel::sourceFolderChanged, &AppModel::currentDocumentChanged,
        &AppModel::generationModeChanged);
}

void SourceCard::chooseFolder() {
    if (const auto folder = model_.pickFolder("Choose a source sample folder"))
        model_.setSourceFolder(*folder);
}

} // namespace torvo::app
