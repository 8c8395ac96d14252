#pragma once

#include "Models/BankMappingDocument.h"
#include "Platform/FileURL.h"
#include "Platform/SystemFileManager.h"

#include <memory>
#include <vector>

namespace torvo {

/// Creates, writes and reads bank mapping documents (JSON).
class BankMappingStore {
public:
    explicit BankMappingStore(std::shared_ptr<const FileManager> fileManager = systemFileManager());

    /// Creates a document of version 2 with the current time.
    BankMappingDocument document(const FileURL& sourceFolder, GenerationMode generationMode,
                                 const BankNameScheme& naming,
                                 const GenerationTemplate& generationTemplate,
                                 std::vector<BankRecipe> recipes) const;

    /// Atomically replaces `file` and returns once it has reached the storage medium. An existing
    /// file keeps its permissions; a symbolic link is kept and its target is written. Also removes
    /// temporary files of interrupted exports from the folder. Throws `FileError`.
    void exportDocument(const BankMappingDocument& document, const FileURL& file) const;

    /// Reads a document. Throws `FileError`, `DecodingError`, or `GenerationError` for a file
    /// larger than 100 MB, which is not read.
    BankMappingDocument importDocument(const FileURL& file) const;

private:
    std::shared_ptr<const FileManager> fileManager_;
};

} // namespace torvo
