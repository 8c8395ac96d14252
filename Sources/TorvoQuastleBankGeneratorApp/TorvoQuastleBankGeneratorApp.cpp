#include "TorvoQuastleBankGeneratorApp.h"

#include "About.h"
#include "Accessibility.h"
#include "AudioSupport.h"
#include "Binding.h"
#include "ContentView.h"
#include "MarloStyle.h"
#include "MarloTheme.h"
#include "Platform/SystemFileManager.h"
#include "TorvoMetadata.h"

#include <QApplication>
#include <QIcon>
#include <QMenuBar>
#include <QScreen>
#include <QShortcut>
#include <QToolTip>

/// Registers the resources of the static library. The macro must be used in the global namespace.
static void registerResources() {
    Q_INIT_RESOURCE(resources);
}

namespace torvo::app {

namespace {

SampleScanner makeScanner() {
    return {std::make_shared<const AVAudioFileInspector>(), AudioCompatibilityEvaluator{},
            systemFileManager()};
}

BankExporter makeExporter() {
    return {systemFileManager(), std::make_shared<const AVAudioSamplePreparer>(),
            TorvoWAVMetadataWriter{}};
}

/// Uses the image drawn for each size, because scaled ones lose their lines.
QIcon applicationIcon() {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48, 64, 128})
        icon.addFile(QStringLiteral(":/icons/%1.png").arg(side));
    return icon;
}

} // namespace

void installTheme() {
    registerResources();
    QApplication::setWindowIcon(applicationIcon());
    auto* style = new MarloStyle;
    QApplication::setStyle(style);
    QApplication::setPalette(style->standardPalette());
    QApplication::setFont(MarloTheme::font(13, MarloTheme::FontCut::regular));
    QToolTip::setPalette(style->standardPalette());
    QToolTip::setFont(MarloTheme::font(12, MarloTheme::FontCut::regular));
    installAccessibility();
}

TorvoQuastleBankGeneratorApp::TorvoQuastleBankGeneratorApp()
    : panels_(std::make_shared<QtPanels>()),
      model_(makeScanner(), BankGenerator{}, makeExporter(), BankMappingStore{}, panels_,
             systemFileManager()) {
    panels_->setWindow(&window_);
    window_.setWindowTitle(QString::fromLatin1(applicationName));
    // Created with the window as its parent, because reparenting would lose the focus.
    auto* const content = new ContentView(model_, &window_);
    content->takeDropsOn(window_);
    window_.setCentralWidget(content);
    bind(
        model_, &window_, [this] { panels_->startAt(sourceFolderTitle, model_.sourceFolder()); },
        &AppModel::sourceFolderChanged);
    bind(
        model_, &window_, [this] { panels_->startAt(exportFolderTitle, model_.exportFolder()); },
        &AppModel::exportFolderChanged);
    addFileMenu();
    addHelpMenu();
    auto* const openMenus = new QShortcut(Qt::Key_F10, &window_);
    QObject::connect(openMenus, &QShortcut::activated, &window_, [this] {
        QMenuBar* const bar = window_.menuBar();
        bar->setActiveAction(bar->actions().front());
    });
}

void TorvoQuastleBankGeneratorApp::addFileMenu() {
    QMenu* file = window_.menuBar()->addMenu(QMenu::tr("&File"));
    QAction* importJSON = file->addAction(QMenu::tr("Import JSON…"));
    QAction* exportJSON = file->addAction(QMenu::tr("Export JSON…"));
    file->addSeparator();
    QAction* quit = file->addAction(QMenu::tr("Quit"));
    // Queued, so that the menu closes before a panel opens.
    QObject::connect(importJSON, &QAction::triggered, &model_, &AppModel::importJSON,
                     Qt::QueuedConnection);
    QObject::connect(exportJSON, &QAction::triggered, &model_, &AppModel::exportJSON,
                     Qt::QueuedConnection);
    QObject::connect(quit, &QAction::triggered, qApp, &QApplication::quit);
    bind(
        model_, exportJSON,
        [this, exportJSON] { exportJSON->setEnabled(model_.currentDocument() != nullptr); },
        &AppModel::currentDocumentChanged);
}

void TorvoQuastleBankGeneratorApp::addHelpMenu() {
    QMenu* help = window_.menuBar()->addMenu(QMenu::tr("&Help"));
    QAction* about = help->addAction(QMenu::tr("About Torvo Quastle Bank Generator"));
    about->setMenuRole(QAction::AboutRole);
    QObject::connect(
        about, &QAction::triggered, &window_,
        [this, title = about->text()] {
            showAbout(&window_, title, QString::fromLatin1(applicationName));
        },
        Qt::QueuedConnection);
}

void TorvoQuastleBankGeneratorApp::showWindow() {
    window_.fitToScreen();
    const QSize wanted = window_.sizeHint();
    const QSize room = window_.contentRoom() + QSize(0, window_.menuBar()->sizeHint().height());
    window_.resize(wanted.boundedTo(room));
    window_.show();
}

} // namespace torvo::app
