#include "BankMappingStore.h"

#include "Json.h"
#include "Models/DecodingError.h"
#include "Models/GenerationError.h"
#include "Platform/FileOperations.h"

#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace torvo {

namespace {

/// Limits memory use for hostile input; valid documents have a nesting depth below 10.
constexpr int maxNesting = 64;
constexpr std::uint64_t maxDocumentSize = 100'000'000; // bytes

nlohmann::json parsed(const std::vector<std::byte>& bytes) {
    const auto* text = reinterpret_cast<const char*>(bytes.data());
    const auto limitNesting = [](int depth, nlohmann::json::parse_event_t, nlohmann::json&) {
        if (depth > maxNesting)
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
                                      const FileURL& file) const {
    const auto text = nlohmann::json(document).dump(2) + "\n";
    saveDocument(*fileManager_, file.path(), std::as_bytes(std::span(text)));
}

BankMappingDocument BankMappingStore::importDocument(const FileURL& file) const {
    const auto status = fileManager_->status(file.path());
    if (status && status->size > maxDocumentSize) {
        throw GenerationError::exportFailed(file.lastPathComponent() +
                                            " is too large to be a bank mapping.");
    }
    const auto bytes = readFile(*fileManager_, file.path());
    try {
        return parsed(bytes).get<BankMappingDocument>();
    } catch (const DecodingError& error) {
        throw error.withDocumentName(file.lastPathComponent());
    }
}

} // namespace torvo
