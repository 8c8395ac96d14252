#pragma once

#include "Models/BankMappingDocument.h"
#include "Platform/FileManager.h"

#include <memory>
#include <vector>

namespace torvo {

/// Builds, writes and reads the JSON record of a run.
class BankMappingStore {
public:
    explicit BankMappingStore(std::shared_ptr<const FileManager> fileManager = systemFileManager());

    /// Version 2, dated now.
    BankMappingDocument document(const FileURL& sourceFolder, GenerationMode generationMode,
                                 const BankNameScheme& naming,
                                 const GenerationTemplate& generationTemplate,
                                 std::vector<BankRecipe> recipes) const;

    /// Atomically replaces `to` and returns once it has reached the storage medium. An existing
    /// file keeps its permissions; a symbolic link is kept and its target is written. Also removes
    /// temporary files of interrupted exports from the folder. Throws `FileError`.
    void exportDocument(const BankMappingDocument& document, const FileURL& to) const;

    /// Throws `FileError` or `DecodingError`.
    BankMappingDocument importDocument(const FileURL& from) const;

private:
    std::shared_ptr<const FileManager> fileManager_;
};

} // namespace torvo
