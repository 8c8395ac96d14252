#include "Models/ExportRecords.h"

#include <iterator>

namespace torvo {

ExportJob exportJob(const BankMappingDocument& document, const FileURL& exportFolder,
                    const TorvoMetadataOptions& metadataOptions) {
    return {.sourceFolder = document.sourceFolder,
            .exportFolder = exportFolder,
            .generationTemplate = document.generationTemplate,
            .targetBankCount = std::ssize(document.recipes),
            .seed = document.recipes.empty() ? 0 : document.recipes.front().seed,
            .naming = document.naming,
            .metadataOptions = metadataOptions,
            .recipes = document.recipes};
}

} // namespace torvo
