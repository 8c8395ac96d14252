#pragma once

#include "Platform/Error.h"

#include <string>

namespace torvo {

/// A mapping document has missing or invalid content. The description contains the key path and the
/// reason: "recipes[3].channels.2.sourceURL: missing".
class DecodingError final : public Error {
public:
    DecodingError(std::string keyPath, std::string reason);

    /// The same error with the name of its document.
    DecodingError withDocumentName(const std::string& documentName) const;

    const std::string& documentName() const { return documentName_; } ///< empty when unknown
    const std::string& keyPath() const { return keyPath_; } ///< empty for the document itself
    const std::string& reason() const { return reason_; }
    const std::string& errorDescription() const { return description_; }
    /// A sentence with the document's name and the description.
    std::string userFacingDescription() const override;
    const char* what() const noexcept override { return description_.c_str(); }

private:
    std::string documentName_;
    std::string keyPath_;
    std::string reason_;
    std::string description_;
};

} // namespace torvo
