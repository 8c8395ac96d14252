#include "Views/RunMessage.h"

#include "Binding.h"
#include "Controls/Announcements.h"
#include "Controls/Card.h"
#include "Controls/ElidedPathLabel.h"
#include "Controls/Labels.h"
#include "Controls/LinkButton.h"
#include "Controls/MessagePlate.h"
#include "Controls/ProgressBar.h"
#include "Controls/StatusIcon.h"
#include "Controls/WrappingLabel.h"
#include "Text.h"

#include <QHBoxLayout>
#include <QLabel>

namespace torvo::app {

namespace {

/// Room for two lines of a message and a line below, so that nothing moves when a run begins, ends
/// or fails.
constexpr int plateHeight = 60;
constexpr int maxMessageLines = 2;
constexpr int lineSpacing = 2;
constexpr int columnSpacing = 12;

QString progressLine(const ProgressUpdate& update) {
    return RunMessage::tr("WRITING %1  %2/%3")
        .arg(toQString(update.currentBankName), QString::number(update.completedBanks),
             QString::number(update.totalBanks));
}

QString counts(const ExportSummary& summary) {
    return RunMessage::tr("%1 banks · %2 files copied · %3 converted · "
                          "%4 banks with reused samples")
        .arg(summary.banksWritten)
        .arg(summary.copiedFiles)
        .arg(summary.convertedFiles)
        .arg(summary.reusedBankCount);
}

/// The path relative to the device folder or the source; elsewhere the whole path.
QString shortPath(const AppModel& model, const FileURL& file) {
    const std::string path = file.shownPath();
    for (const auto& folder : {model.expectedExportRoot(), model.sourceFolder()}) {
        const std::string parent = folder ? folder->shownPath() + '/' : std::string();
        if (folder && path.starts_with(parent))
            return toQString(path.substr(parent.size()));
    }
    return toQString(path);
}

/// The texts of a state; empty parts are hidden.
struct Content {
    std::optional<StatusKind> icon = std::nullopt;
    QString message = {};
    QString nextStep = {};
    QString counts = {};
    int messagePixelSize = 15;
    MarloTheme::FontCut cut = MarloTheme::FontCut::medium;
    QColor color = MarloTheme::ink;
    bool showsProgress = false;
    std::optional<ProgressUpdate> progress = std::nullopt; ///< absent: indeterminate
};

Content contentOf(const AppModel& model) {
    struct Visitor {
        bool updating;
        bool isWrittenToTop;

        Content operator()(const AppModel::Idle&) const { return {}; }
        Content operator()(const AppModel::Running& run) const {
            Content content;
            content.messagePixelSize = 13;
            content.showsProgress = true;
            content.progress = run.progress;
            content.message = run.progress ? progressLine(*run.progress)
                              : updating   ? RunMessage::tr("Applying selections..")
                                           : RunMessage::tr("PREPARING EXPORT…");
            return content;
        }
        Content operator()(const AppModel::Finished& run) const {
            return {.icon = StatusKind::success,
                    .message = toQString(run.completedExport.statusHeadline),
                    .nextStep = isWrittenToTop
                                    ? QString()
                                    : RunMessage::tr("Copy QZT508 to the top of your card"),
                    .counts = counts(run.completedExport.summary)};
        }
        Content operator()(const AppModel::FinishedMessage& run) const {
            return {.icon = StatusKind::success, .message = toQString(run.message)};
        }
        Content operator()(const AppModel::Failed& run) const {
            return {.icon = StatusKind::failure,
                    .message = toQString(run.description),
                    .cut = MarloTheme::FontCut::semiBold,
                    .color = MarloTheme::danger};
        }
    };
    return std::visit(Visitor{model.isUpdatingExistingBank(), model.isWrittenToTop()},
                      model.runState());
}

} // namespace

RunMessage::RunMessage(AppModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      plate_(new MessagePlate),
      icon_(new StatusIcon),
      message_(new WrappingLabel),
      nextStep_(makeLabel({}, 12, MarloTheme::FontCut::regular, MarloTheme::ink)),
      counts_(makeLabel({}, 12, MarloTheme::FontCut::regular, MarloTheme::muted)),
      file_(new ElidedPathLabel),
      progress_(new ProgressBar),
      showFolder_(new LinkButton(tr("Show folder"))) {
    plate_->setFixedHeight(plateHeight);
    message_->setMaxLines(maxMessageLines);
    setAnnounced(*message_);
    message_->setObjectName(QStringLiteral("runMessage"));
    setAnnounced(*nextStep_);
    counts_->setObjectName(QStringLiteral("runCounts"));
    counts_->setToolTip(
        tr("Each channel of a bank is written twice: into the bank's folder and into Pool.\n"
           "copied: files that the device plays as they are\n"
           "converted: files that had to be made playable for the device\n"
           "reused: the folder has too few samples to give every bank sounds of its own"));
    file_->setObjectName(QStringLiteral("runFile"));
    file_->setFont(MarloTheme::font(12, MarloTheme::FontCut::regular));
    // It is shown on the light background of a failure.
    setTextColor(*file_, MarloTheme::panelRaised);
    auto* result = new QVBoxLayout;
    result->setSpacing(lineSpacing);
    result->addWidget(message_);
    result->addWidget(nextStep_);
    // Not beside the counts: they need the whole width of a small screen.
    auto* top = new QHBoxLayout;
    top->setSpacing(columnSpacing);
    top->addLayout(result, 1);
    QLayout* const link = showFolder_->inLine();
    top->addLayout(link);
    top->setAlignment(link, Qt::AlignTop);
    auto* words = new QVBoxLayout;
    words->setSpacing(lineSpacing);
    words->addLayout(top);
    words->addWidget(counts_);
    words->addWidget(file_);
    auto* row = new QHBoxLayout;
    row->setSpacing(columnSpacing);
    row->addWidget(icon_, 0, Qt::AlignTop);
    row->addLayout(words, 1);
    auto* column = new QVBoxLayout(plate_);
    column->setContentsMargins(Card::horizontalPadding, 0, Card::horizontalPadding, 0);
    column->setSpacing(MarloTheme::grid);
    column->addStretch();
    column->addLayout(row);
    column->addWidget(progress_);
    column->addStretch();
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(plate_);
    connect(showFolder_, &QAbstractButton::clicked, &model, &AppModel::showWrittenFolder);
    bind(
        model, this, [this] { render(); }, &AppModel::sourceFolderChanged);
    connect(&model, &AppModel::runStateChanged, this, [this] {
        if (contentOf(model_).icon)
            announceAfter(*message_, [this] { render(); });
        else
            render();
    });
}

void RunMessage::render() {
    const Content content = contentOf(model_);
    plate_->setFailed(content.icon == StatusKind::failure);
    icon_->setVisible(content.icon.has_value());
    if (content.icon)
        icon_->setKind(*content.icon);
    message_->setFont(MarloTheme::font(content.messagePixelSize, content.cut));
    setTextColor(*message_, content.color);
    message_->setText(content.message);
    message_->setCopyable(content.icon == StatusKind::failure);
    message_->setVisible(!content.message.isEmpty());
    nextStep_->setText(content.nextStep);
    nextStep_->setVisible(!content.nextStep.isEmpty());
    const auto& written = model_.writtenFolder();
    showFolder_->setVisible(written.has_value());
    showFolder_->setToolTip(written ? plainToolTip(shownPath(*written)) : QString());
    counts_->setText(content.counts);
    counts_->setVisible(!content.counts.isEmpty());
    const auto& file = model_.failedFile();
    file_->setPath(file ? shownPath(*file) : QString(),
                   file ? shortPath(model_, *file) : QString());
    file_->setVisible(file.has_value());
    progress_->setVisible(content.showsProgress);
    progress_->setAccessibleName(content.message);
    if (content.progress) {
        progress_->setRange(0, static_cast<int>(content.progress->totalBanks));
        progress_->setValue(static_cast<int>(content.progress->completedBanks));
    } else {
        progress_->setRange(0, 0);
    }
}

} // namespace torvo::app
