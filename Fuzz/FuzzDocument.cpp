// Reads arbitrary bytes as a document: either an error or a document that survives saving
// unchanged.

#include "BankMappingStore.h"
#include "MemoryFileManager.h"
#include "Models/DecodingError.h"
#include "Require.h"

#include <cstdint>
#include <memory>

namespace torvo::fuzz {
namespace {

void readAnything(std::span<const std::byte> bytes) {
    const auto files = std::make_shared<MemoryFileManager>();
    const FileURL read(std::filesystem::path("/read.json"));
    const FileURL saved(std::filesystem::path("/saved.json"));
    files->put(read.path(), bytes);
    const BankMappingStore store(files);
    BankMappingDocument document;
    try {
        document = store.importDocument(read);
    } catch (const DecodingError&) {
        return;
    }
    store.exportDocument(document, saved);
    require(store.importDocument(saved) == document, "a saved document is the same");
}

} // namespace
} // namespace torvo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    torvo::fuzz::readAnything(std::as_bytes(std::span(data, size)));
    return 0;
}
