#include "SmallLibrary.h"

#include "AiffFixture.h"
#include "WavFixture.h"

namespace torvo::test {

namespace fs = std::filesystem;

std::vector<std::byte> aiffRamp(std::size_t frameCount) {
    std::vector<std::int16_t> frames(frameCount);
    for (std::size_t frame = 0; frame < frameCount; ++frame)
        frames[frame] = static_cast<std::int16_t>(frame * 37 % 30000);
    return aiffFile(44100, frames);
}

fs::path writeSmallLibrary(const TemporaryFolder& inside) {
    const WavFormat native;
    const WavFormat deep{.channels = 2, .bits = 24};
    const WavFormat fast{.sampleRate = 48000, .channels = 2, .bits = 24};
    const WavFormat slow{.sampleRate = 22050};
    inside.write("Kit/Kicks/kick one.wav", wavFile(native, std::size_t{1200}));
    inside.write("Kit/Kicks/808/BD 2.wav", wavFile(fast, std::size_t{9000}));
    inside.write("Kit/Snares/snare.wav", wavFile(deep, std::size_t{700}));
    inside.write("Kit/Claps/clap.aif", aiffRamp(5000));
    inside.write("Kit/Hats/closed hat.wav", wavFile(slow, std::size_t{400}));
    inside.write("Kit/Hats/open hat.wav", wavFile(native, std::size_t{300}));
    inside.write("Kit/Toms/tom 1.wav", wavFile(native, std::size_t{1100}));
    inside.write("Kit/Toms/tom 2.wav", wavFile(fast, std::size_t{2100}));
    inside.write("Kit/Toms/tom 3.aif", aiffRamp(1300));
    inside.write("Kit/Toms/readme.txt", "no sample");
    inside.write("Kit/Kicks/kick one.wav.asd", "sidecar");
    inside.write("Kit/Crash/crash.wav", wavFile(native, std::size_t{200}));
    inside.write("Kit/notes.txt", "no role");
    return inside / "Kit";
}

CoreServices::CoreServices(std::shared_ptr<const FileManager> fileManager)
    : scanner_(std::make_shared<AVAudioFileInspector>(fileManager), {}, fileManager),
      metadataWriter_(fileManager),
      exporter_(fileManager, std::make_shared<AVAudioSamplePreparer>(fileManager), metadataWriter_),
      store_(fileManager) {}

ScanReport CoreServices::scan(const fs::path& source, GenerationMode mode) const {
    return scanner_.scan(FileURL::directory(source), mode);
}

BankMappingDocument CoreServices::run(const fs::path& source, const fs::path& out,
                                      std::int64_t banks, std::uint64_t seed) const {
    const auto report = scan(source);
    const BankNameScheme naming(report.sourceFolder.lastPathComponent());
    auto recipes =
        BankGenerator{}.makeRecipes(report.buckets, report.mode, std::nullopt, banks, naming, seed);
    auto document = store_.document(report.sourceFolder, report.mode, naming,
                                    generationTemplate(report.mode), std::move(recipes));
    exportDocument(document, out);
    return document;
}

ExportSummary CoreServices::exportDocument(const BankMappingDocument& document,
                                           const fs::path& out) const {
    return exporter_.exportBanks(exportJob(document, FileURL::directory(out), {}));
}

} // namespace torvo::test
