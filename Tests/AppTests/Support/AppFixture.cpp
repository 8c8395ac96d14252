#include "Support/AppFixture.h"

#include "Platform/Precondition.h"
#include "Platform/SystemFileManager.h"
#include "Support/ForgetfulFileManager.h"
#include "TorvoMetadata.h"
#include "WavFixture.h"

#include <QTest>

#include <array>
#include <chrono>

namespace torvo::test {

namespace {

constexpr std::chrono::milliseconds maxWait{60000};
constexpr std::size_t frameCount = 32;

void addSamples(const TemporaryFolder& folder, const std::string& in, int count) {
    for (int index = 1; index <= count; ++index)
        folder.write(in + "/sample " + std::to_string(index) + ".wav",
                     wavFile(WavFormat{}, frameCount));
}

} // namespace

std::shared_ptr<Gate> GatedInspector::hold(const std::string& part) {
    const std::scoped_lock lock(mutex_);
    return gates_[part] = std::make_shared<Gate>();
}

void GatedInspector::openAll() {
    const std::scoped_lock lock(mutex_);
    for (const auto& [part, gate] : gates_)
        gate->open();
}

AudioFormatDetails GatedInspector::inspectAudioFile(const FileURL& at) const {
    std::shared_ptr<Gate> gate;
    {
        const std::scoped_lock lock(mutex_);
        for (const auto& [part, held] : gates_)
            if (at.path().string().find(part) != std::string::npos)
                gate = held;
    }
    if (gate)
        gate->pass();
    return real_.inspectAudioFile(at);
}

std::shared_ptr<Gate> GatedPreparer::holdBank(std::int64_t bank) {
    const std::scoped_lock lock(mutex_);
    heldFolder_ = "/Bank " + std::to_string(bank) + "/";
    return gate_ = std::make_shared<Gate>();
}

void GatedPreparer::open() {
    const std::scoped_lock lock(mutex_);
    if (gate_)
        gate_->open();
}

SamplePreparationMode GatedPreparer::prepare(const SampleCandidate& sample,
                                             const FileURL& destinationURL,
                                             const SampleEdit& edit) const {
    std::shared_ptr<Gate> gate;
    {
        const std::scoped_lock lock(mutex_);
        if (gate_ && destinationURL.path().string().find(heldFolder_) != std::string::npos)
            gate = gate_;
    }
    if (gate)
        gate->pass();
    return banks_ == Banks::written ? real_.prepare(sample, destinationURL, edit)
                                    : SamplePreparationMode::copied;
}

AppFixture::AppFixture(Banks banks)
    : preparer(std::make_shared<GatedPreparer>(banks)),
      fileManager(std::make_shared<GatedFileManager>(
          banks == Banks::written ? systemFileManager()
                                  : std::make_shared<ForgetfulFileManager>())),
      model(SampleScanner(inspector, AudioCompatibilityEvaluator{}, systemFileManager()),
            BankGenerator{}, BankExporter(fileManager, preparer, TorvoWAVMetadataWriter{}),
            BankMappingStore{}, panels, fileManager) {}

AppFixture::~AppFixture() {
    inspector->openAll();
    preparer->open();
    fileManager->openAll();
}

FileURL AppFixture::drumKit(const std::string& name, int perRole) const {
    static constexpr std::array roles{"Kick",     "Clap",  "Closed Hat",
                                      "Open Hat", "Snare", "Percussion"};
    for (const char* role : roles)
        addSamples(folder, name + "/" + role, perRole);
    return FileURL::directory(folder / name);
}

FileURL AppFixture::loops(const std::string& name, int count) const {
    folder.createFolder(name);
    addSamples(folder, name, count);
    return FileURL::directory(folder / name);
}

FileURL AppFixture::outputFolder(const std::string& name) const {
    return FileURL::directory(folder.createFolder(name));
}

void AppFixture::scan(const FileURL& source) {
    model.setSourceFolder(source);
    waitForWork();
}

void AppFixture::prepareRun() {
    model.setExportFolder(outputFolder());
    scan(drumKit());
}

FileURL AppFixture::savedRun() {
    prepareRun();
    model.generateBanks();
    waitForWork();
    panels->saveTarget = FileURL(folder / "saved.json");
    model.exportJSON();
    precondition(model.lastJSONURL() == panels->saveTarget, "the run was saved");
    return *panels->saveTarget;
}

void AppFixture::waitForWork() {
    precondition(waitUntil([this] { return !model.isBusy(); }), "the work never ended");
}

bool waitUntil(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, static_cast<int>(maxWait.count()));
}

} // namespace torvo::test
