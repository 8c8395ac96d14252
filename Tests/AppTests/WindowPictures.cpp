// Draws the window in each of its states, at single and double scale, as PNG files.

#include "ContentView.h"
#include "Controls/DisclosureSection.h"
#include "Controls/DropZone.h"
#include "Controls/ThreeWayModeToggle.h"
#include "Support/AppFixture.h"
#include "TorvoQuastleBankGeneratorApp.h"
#include "WavFixture.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QPixmap>
#include <QUrl>

#include <cmath>
#include <cstdio>
#include <functional>
#include <string>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

QDir pictures;

/// The whole content, without scrolling.
constexpr QSize wholeWindow{880, 1120};
constexpr QSize smallestWindow{880, 760};

struct Scene {
    AppFixture fixture;
    ContentView view{fixture.model};

    AppModel& model() { return fixture.model; }

    explicit Scene(QSize size = wholeWindow) {
        view.resize(size);
        view.show();
    }

    void save(const std::string& name) {
        auto* modes = view.findChild<ThreeWayModeToggle*>();
        const bool settled =
            waitUntil([modes] { return std::fmod(modes->highlightPosition(), 1.0) == 0.0; });
        if (!settled)
            std::fprintf(stderr, "%s: still moving\n", name.c_str());
        QApplication::processEvents();
        for (const int scale : {1, 2}) {
            QPixmap picture(view.size() * scale);
            picture.setDevicePixelRatio(scale);
            view.render(&picture);
            const QString file =
                QString::fromStdString(name) + QStringLiteral("@%1x.png").arg(scale);
            picture.save(pictures.filePath(file));
        }
    }
};

void ready(const std::string& name, GenerationMode mode) {
    Scene scene;
    scene.model().setGenerationMode(mode);
    scene.model().setExportFolder(scene.fixture.outputFolder("Torvo card"));
    scene.fixture.scan(scene.fixture.drumKit("Dusty Drums", 12));
    scene.save(name);
}

void addIgnoredItems(const AppFixture& fixture) {
    for (int index = 1; index <= 40; ++index)
        fixture.folder.write("Kit A/Kick/notes " + std::to_string(index) + ".txt", "notes");
    fixture.folder.write("Kit A/Vocals/hey.wav", wavFile(WavFormat{}, 8));
    fixture.folder.write("Kit A/Field recordings/" + std::string(200, 'x') + "/rain.wav",
                         wavFile(WavFormat{}, 8));
}

void openLists() {
    Scene scene({880, 1400});
    addIgnoredItems(scene.fixture);
    scene.fixture.scan(scene.fixture.drumKit());
    for (auto* section : scene.view.findChildren<DisclosureSection*>())
        section->setExpanded(true);
    scene.save("lists-open");
}

void scanning() {
    Scene scene;
    const auto gate = scene.fixture.inspector->hold("Kit A");
    scene.model().setSourceFolder(scene.fixture.drumKit());
    scene.save("scanning");
    gate->open();
    scene.fixture.waitForWork();
}

void generating(QSize size, const std::string& prefix) {
    Scene scene(size);
    scene.model().setExportFolder(scene.fixture.outputFolder("Torvo card"));
    scene.fixture.scan(scene.fixture.drumKit());
    const auto first = scene.fixture.preparer->holdBank(1);
    scene.model().generateBanks();
    scene.save(prefix + "preparing");
    const auto later = scene.fixture.preparer->holdBank(43);
    first->open();
    waitUntil([&] {
        const auto* run = std::get_if<AppModel::Running>(&scene.model().runState());
        return run && run->progress && run->progress->completedBanks == 42;
    });
    scene.save(prefix + "generating");
    later->open();
    scene.fixture.waitForWork();
    scene.fixture.panels->saveTarget = FileURL(scene.fixture.folder / "Kita001.json");
    scene.model().exportJSON();
    scene.save(prefix + "finished");
}

void failures() {
    Scene scene;
    scene.model().setSourceFolder(FileURL::directory("/nowhere/Kit A"));
    scene.fixture.waitForWork();
    scene.save("scan-failed");
    scene.model().setExportFolder(FileURL::directory("/proc/no such folder"));
    scene.fixture.scan(scene.fixture.drumKit());
    scene.model().generateBanks();
    scene.fixture.waitForWork();
    scene.save("run-failed");
}

void existingFolder() {
    Scene scene;
    scene.fixture.loops("card/QZT508/Bank 1/3", 12);
    scene.model().setSourceFolder(FileURL::directory(scene.fixture.folder / "card/QZT508"));
    scene.save("existing-folder");
    scene.model().applyMetadataToExistingBank();
    scene.fixture.waitForWork();
    scene.save("metadata-applied");
}

void dragOver() {
    Scene scene;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/samples/Kit A"))});
    QDragEnterEvent enter({20, 20}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(scene.view.findChild<DropZone*>(), &enter);
    scene.save("drag-over");
}

void longNames() {
    Scene scene(smallestWindow);
    const std::string longName = "A very long name " + std::string(220, 'n');
    scene.model().setExportFolder(scene.fixture.outputFolder(longName));
    scene.fixture.scan(scene.fixture.drumKit(longName));
    scene.model().setCVChannel(1, true);
    scene.save("long-names");
    scene.model().setExportFolder(FileURL::directory("/proc/" + longName));
    scene.model().generateBanks();
    scene.fixture.waitForWork();
    scene.save("long-failure");
}

void channels() {
    Scene scene;
    TorvoMetadataOptions options{
        12, TorvoPlaybackRate::rate22, TorvoFilterType::lowPass, true, {1, 3, 8}};
    scene.model().setMetadataOptions(options);
    scene.view.findChild<QComboBox*>()->setFocus(Qt::TabFocusReason);
    QApplication::setActiveWindow(&scene.view);
    scene.save("channels-focus");
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: window-pictures FOLDER\n", stderr);
        return 2;
    }
    pictures = QDir(QString::fromLocal8Bit(argv[1]));
    pictures.mkpath(QStringLiteral("."));
    installTheme();

    Scene().save("empty");
    Scene(smallestWindow).save("empty-smallest");
    Scene(QSize(1400, 1120)).save("empty-wide");
    ready("ready-drums", GenerationMode::drums);
    ready("ready-loops", GenerationMode::loops);
    ready("ready-stabs", GenerationMode::stabs);
    openLists();
    scanning();
    generating(wholeWindow, "");
    generating(smallestWindow, "smallest-");
    failures();
    existingFolder();
    dragOver();
    channels();
    longNames();
    return 0;
}
