#include "SmallLibrary.h"

#include "WavFixture.h"

#include <array>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

void appendBigEndian(std::vector<std::byte>& to, std::uint64_t value, unsigned byteCount) {
    for (unsigned i = byteCount; i-- > 0;)
        to.push_back(static_cast<std::byte>(value >> (8 * i)));
}

} // namespace

std::vector<std::byte> aiffFile(std::uint32_t frameCount) {
    constexpr unsigned bytesPerFrame = 2;
    std::vector<std::byte> common;
    appendBigEndian(common, 1, 2); // channels
    appendBigEndian(common, frameCount, 4);
    appendBigEndian(common, 8 * bytesPerFrame, 2);
    appendBigEndian(common, 0x400E, 2); // 44100 as an 80-bit float: exponent, mantissa
    appendBigEndian(common, 0xAC44'0000'0000'0000, 8);
    std::vector<std::byte> form;
    append(form, "AIFF");
    append(form, "COMM");
    appendBigEndian(form, common.size(), 4);
    append(form, common);
    append(form, "SSND");
    appendBigEndian(form, std::uint64_t{8} + bytesPerFrame * frameCount, 4);
    appendBigEndian(form, 0, 8); // offset and block size
    for (std::uint32_t frame = 0; frame < frameCount; ++frame)
        appendBigEndian(form, frame * 37 % 30000, bytesPerFrame);
    std::vector<std::byte> file;
    append(file, "FORM");
    appendBigEndian(file, form.size(), 4);
    append(file, form);
    return file;
}

fs::path writeSmallLibrary(const TemporaryFolder& inside) {
    const WavFormat native;
    const WavFormat deep{.channels = 2, .bits = 24};
    const WavFormat fast{.sampleRate = 48000, .channels = 2, .bits = 24};
    const WavFormat slow{.sampleRate = 22050};
    inside.write("Kit/Kicks/kick one.wav", wavFile(native, std::size_t{1200}));
    inside.write("Kit/Kicks/808/BD 2.wav", wavFile(fast, std::size_t{9000}));
    inside.write("Kit/Snares/snare.wav", wavFile(deep, std::size_t{700}));
    inside.write("Kit/Claps/clap.aif", aiffFile(5000));
    inside.write("Kit/Hats/closed hat.wav", wavFile(slow, std::size_t{400}));
    inside.write("Kit/Hats/open hat.wav", wavFile(native, std::size_t{300}));
    inside.write("Kit/Toms/tom 1.wav", wavFile(native, std::size_t{1100}));
    inside.write("Kit/Toms/tom 2.wav", wavFile(fast, std::size_t{2100}));
    inside.write("Kit/Toms/tom 3.aif", aiffFile(1300));
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
    return exporter_.exportBanks(
        {.sourceFolder = document.sourceFolder,
         .exportFolder = FileURL::directory(out),
         .generationTemplate = document.generationTemplate,
         .targetBankCount = static_cast<std::int64_t>(document.recipes.size()),
         .seed = document.recipes.empty() ? 0 : document.recipes.front().seed,
         .naming = document.naming,
         .metadataOptions = {},
         .recipes = document.recipes});
}

} // namespace torvo::test
