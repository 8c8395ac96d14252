#include "Models/DecodingError.h"

#include <utility>

namespace torvo {

DecodingError::DecodingError(std::string keyPath, std::string reason)
    : keyPath_(std::move(keyPath)),
      reason_(std::move(reason)),
      description_(keyPath_.empty() ? reason_ : keyPath_ + ": " + reason_) {}

DecodingError DecodingError::withDocumentName(const std::string& documentName) const {
    auto error = *this;
    error.documentName_ = documentName;
    return error;
}

std::string DecodingError::userFacingDescription() const {
    auto sentence = (documentName_.empty() ? "The mapping document" : documentName_) +
                    " cannot be used: " + description_;
    if (!sentence.ends_with('.'))
        sentence += '.';
    return sentence;
}

} // namespace torvo
