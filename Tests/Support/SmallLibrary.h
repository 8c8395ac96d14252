#pragma once

#include "AudioSupport.h"
#include "BankExporter.h"
#include "BankGenerator.h"
#include "BankMappingStore.h"
#include "SampleScanner.h"
#include "TemporaryFolder.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace torvo::test {

/// Writes a drum library below `inside`/"Kit": files that the device plays unchanged, files that
/// need a conversion (with the WAV reader and with FFmpeg), sidecars, a text file and an ignored
/// folder. Returns the library's folder.
std::filesystem::path writeSmallLibrary(const TemporaryFolder& inside);

/// An AIFF file of 16 bits, mono, 44100 Hz, of rising frames.
std::vector<std::byte> aiffRamp(std::size_t frameCount);

/// The services of the core, connected as in the application, with one file manager.
class CoreServices {
public:
    explicit CoreServices(std::shared_ptr<const FileManager> fileManager);

    ScanReport scan(const std::filesystem::path& source,
                    GenerationMode mode = GenerationMode::drums) const;
    /// Scans, generates and exports; returns the document of the run.
    BankMappingDocument run(const std::filesystem::path& source, const std::filesystem::path& out,
                            std::int64_t banks, std::uint64_t seed) const;
    ExportSummary exportDocument(const BankMappingDocument& document,
                                 const std::filesystem::path& out) const;

    const SampleScanner& scanner() const { return scanner_; }
    const BankExporter& exporter() const { return exporter_; }
    const TorvoWAVMetadataWriter& metadataWriter() const { return metadataWriter_; }
    const BankMappingStore& store() const { return store_; }

private:
    SampleScanner scanner_;
    TorvoWAVMetadataWriter metadataWriter_;
    BankExporter exporter_;
    BankMappingStore store_;
};

} // namespace torvo::test
