#pragma once

#include "AppModel.h"
#include "Support/FakePanels.h"
#include "Support/Gate.h"
#include "Support/GatedFileManager.h"
#include "TemporaryFolder.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace torvo::test {

/// Holds back the scan of any folder that was named here, until its gate is opened.
class GatedInspector final : public AudioFileInspecting {
public:
    /// Files whose path contains `part` wait for the returned gate.
    std::shared_ptr<Gate> hold(const std::string& part);
    void openAll();
    AudioFormatDetails inspectAudioFile(const FileURL& at) const override;

private:
    AVAudioFileInspector real_;
    mutable std::mutex mutex_;
    std::map<std::string, std::shared_ptr<Gate>> gates_;
};

/// What becomes of the banks of a run.
enum class Banks {
    forgotten, ///< no sample is read and nothing is written into a device folder
    written,   ///< as the program does it
};

/// Holds back every sample of the one bank that was named last, until its gate is opened.
class GatedPreparer final : public AudioFilePreparing {
public:
    explicit GatedPreparer(Banks banks) : banks_(banks) {}
    std::shared_ptr<Gate> holdBank(std::int64_t bank);
    void open();
    SamplePreparationMode prepare(const SampleCandidate& sample,
                                  const FileURL& destinationURL) const override;

private:
    Banks banks_;
    AVAudioSamplePreparer real_;
    mutable std::mutex mutex_;
    std::string heldFolder_;
    std::shared_ptr<Gate> gate_;
};

/// A model on the real services, on folders of its own. Banks are forgotten unless a test is about
/// them.
struct AppFixture {
    TemporaryFolder folder;
    std::shared_ptr<FakePanels> panels = std::make_shared<FakePanels>();
    std::shared_ptr<GatedInspector> inspector = std::make_shared<GatedInspector>();
    std::shared_ptr<GatedPreparer> preparer;
    /// Of the model and its exporter.
    std::shared_ptr<GatedFileManager> fileManager;
    app::AppModel model;

    explicit AppFixture(Banks banks = Banks::forgotten);
    /// Holds nothing back any more: a test that failed before it opened its gates still ends.
    ~AppFixture();
    AppFixture(const AppFixture&) = delete;
    AppFixture& operator=(const AppFixture&) = delete;

    /// A folder with every drum role, `perRole` short samples each; its URL.
    FileURL drumKit(const std::string& name = "Kit A", int perRole = 4) const;
    /// A folder with `count` short samples of no drum role.
    FileURL loops(const std::string& name = "Loops", int count = 9) const;
    FileURL outputFolder(const std::string& name = "out") const;

    /// Chooses the folder and waits for the scan.
    void scan(const FileURL& source);
    /// Chooses an output folder and scans a drum kit: banks can be generated.
    void prepareRun();
    /// A finished generation whose document was saved; its file.
    FileURL savedRun();
    /// Until no background work is left and its results have arrived.
    void waitForWork();
};

/// Runs the event loop until the condition holds; false when it never does.
bool waitUntil(const std::function<bool()>& condition);

} // namespace torvo::test
