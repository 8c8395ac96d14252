// Inspects and prepares arbitrary bytes: a file reported as compatible can be prepared and stamped,
// and a conversion writes a WAV file of the announced size.

#include "AudioSupport.h"
#include "AudioSupport/RiffChunks.h"
#include "MemoryFileManager.h"
#include "Models/GenerationError.h"
#include "Require.h"
#include "TorvoMetadata.h"

#include <cstdint>
#include <memory>
#include <new>
#include <optional>

namespace torvo::fuzz {
namespace {

const FileURL source(std::filesystem::path("/in/sample.wav"));
const FileURL destination(std::filesystem::path("/out/sample.wav"));

FileEdit stamp(const ByteSource& bytes) {
    try {
        return TorvoWAVMetadataWriter().busyChunkEdit(bytes, {}, 1);
    } catch (const GenerationError&) {
        // Caught here: a sample may be refused, but not because of the stamp.
        require(false, "what is written can be stamped");
        throw;
    }
}

void checkConverted(const MemoryFileManager& files) {
    const auto bytes = files.contentOf(destination.path());
    require(bytes != nullptr, "a converted file is there");
    const auto found = findDataChunk(MemoryByteSource(*bytes));
    require(std::holds_alternative<RiffChunk>(found), "a converted file has a data chunk");
    const auto& data = std::get<RiffChunk>(found);
    constexpr std::size_t stampSize = 1944;
    require(data.payloadEnd() + stampSize == bytes->size(),
            "the header tells the size of the file");
    require(data.payloadSize % 2 == 0, "whole frames");
}

std::optional<AudioFormatDetails> inspected(const std::shared_ptr<MemoryFileManager>& files) {
    try {
        return AVAudioFileInspector(files).inspectAudioFile(source);
    } catch (const GenerationError&) {
        return std::nullopt;
    } catch (const std::bad_alloc&) {
        return std::nullopt; // the library's limit on what one file may take
    }
}

void prepareAnything(std::span<const std::byte> bytes) {
    const auto files = std::make_shared<MemoryFileManager>();
    files->put(source.path(), bytes);
    const auto details = inspected(files);
    if (!details)
        return;
    const AVAudioSamplePreparer preparer(files);
    SampleCandidate sample{source, ChannelRole::kick, "sample",
                           AudioCompatibilityEvaluator{}.compatibility(*details), *details};
    if (std::holds_alternative<CompatibleWav>(sample.compatibility)) {
        preparer.prepare(sample, destination, stamp);
        // Converting a compatible file must be safe as well.
        sample.compatibility = RequiresConversion{"any"};
    }
    try {
        preparer.prepare(sample, destination, stamp);
    } catch (const GenerationError&) {
        return;
    } catch (const std::bad_alloc&) {
        return;
    }
    checkConverted(*files);
}

} // namespace
} // namespace torvo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    torvo::fuzz::prepareAnything(std::as_bytes(std::span(data, size)));
    return 0;
}
