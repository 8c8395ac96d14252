#include "BankMappingStore.h"

#include "Json.h"
#include "Models/DecodingError.h"

#include <span>
#include <string>
#include <utility>

namespace torvo {

namespace {

/// Far more than a document has, far less than would fill the memory.
constexpr int greatestNesting = 64;

nlohmann::json parsed(const std::vector<std::byte>& bytes) {
    const auto* text = reinterpret_cast<const char*>(bytes.data());
    const auto limitNesting = [](int depth, nlohmann::json::parse_event_t, nlohmann::json&) {
        if (depth > greatestNesting)
            throw DecodingError("", "nested too deeply");
        return true;
    };
    try {
        return nlohmann::json::parse(text, text + bytes.size(), limitNesting);
    } catch (const nlohmann::json::parse_error& error) {
        throw DecodingError("", "malformed JSON at byte " + std::to_string(error.byte));
    } catch (const nlohmann::json::out_of_range&) {
        throw DecodingError("", "a number is out of range");
    }
}

} // namespace

BankMappingStore::BankMappingStore(std::shared_ptr<const FileManager> fileManager)
    : fileManager_(std::move(fileManager)) {}

BankMappingDocument BankMappingStore::document(const FileURL& sourceFolder,
                                               GenerationMode generationMode,
                                               const BankNameScheme& naming,
                                               const GenerationTemplate& generationTemplate,
                                               std::vector<BankRecipe> recipes) const {
    return {.version = 2,
            .sourceFolder = sourceFolder,
            .generationMode = generationMode,
            .naming = naming,
            .generationTemplate = generationTemplate,
            .recipes = std::move(recipes),
            .exportedAt =
                std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now())};
}

void BankMappingStore::exportDocument(const BankMappingDocument& document,
                                      const FileURL& to) const {
    const auto text = nlohmann::json(document).dump(2) + "\n";
    saveDocument(*fileManager_, to.path(), std::as_bytes(std::span(text)));
}

BankMappingDocument BankMappingStore::importDocument(const FileURL& from) const {
    const auto bytes = readFile(*fileManager_, from.path());
    try {
        return parsed(bytes).get<BankMappingDocument>();
    } catch (const DecodingError& error) {
        throw error.withDocumentName(from.lastPathComponent());
    }
}

} // namespace torvo
