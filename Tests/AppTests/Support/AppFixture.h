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

/// An inspector that blocks on chosen files until a gate is opened.
class GatedInspector final : public AudioFileInspecting {
public:
    /// Blocks on files whose path contains `part` until the returned gate is opened.
    std::shared_ptr<Gate> hold(const std::string& part);
    void openAll();
    AudioFormatDetails inspectAudioFile(const FileURL& at) const override;

private:
    AVAudioFileInspector real_;
    mutable std::mutex mutex_;
    std::map<std::string, std::shared_ptr<Gate>> gates_;
};

/// Whether a run writes its banks.
enum class Banks {
    forgotten, ///< no sample is read, and nothing is written into device folders
    written,   ///< as in the program
};

/// A preparer that blocks on the samples of one bank until a gate is opened.
class GatedPreparer final : public AudioFilePreparing {
public:
    explicit GatedPreparer(Banks banks) : banks_(banks) {}
    std::shared_ptr<Gate> holdBank(std::int64_t bank);
    void open();
    SamplePreparationMode prepare(const SampleCandidate& sample, const FileURL& destinationURL,
                                  const SampleEdit& edit = {}) const override;

private:
    Banks banks_;
    AVAudioSamplePreparer real_;
    mutable std::mutex mutex_;
    std::string heldFolder_;
    std::shared_ptr<Gate> gate_;
};

/// A model with the real services on temporary folders. Banks are not written unless a test needs
/// them.
struct AppFixture {
    TemporaryFolder folder;
    std::shared_ptr<FakePanels> panels = std::make_shared<FakePanels>();
    std::shared_ptr<GatedInspector> inspector = std::make_shared<GatedInspector>();
    std::shared_ptr<GatedPreparer> preparer;
    /// The file manager of the model and its exporter.
    std::shared_ptr<GatedFileManager> fileManager;
    app::AppModel model;

    explicit AppFixture(Banks banks = Banks::forgotten);
    /// Opens all gates, so that a test that failed before it did so still ends.
    ~AppFixture();
    AppFixture(const AppFixture&) = delete;
    AppFixture& operator=(const AppFixture&) = delete;

    /// Creates a folder with `perRole` short samples of every drum role.
    FileURL drumKit(const std::string& name = "Kit A", int perRole = 4) const;
    /// Creates a folder with `count` short samples that have no drum role.
    FileURL loops(const std::string& name = "Loops", int count = 9) const;
    FileURL outputFolder(const std::string& name = "out") const;

    /// Sets the source folder and waits for the scan.
    void scan(const FileURL& source);
    /// Sets an output folder and scans a drum kit, so that banks can be generated.
    void prepareRun();
    /// Generates banks, saves the document and returns its file.
    FileURL savedRun();
    /// Waits until no background work is left and all results have arrived.
    void waitForWork();
};

/// Runs the event loop until the condition holds. Returns false after a time limit.
bool waitUntil(const std::function<bool()>& condition);

} // namespace torvo::test
