#pragma once

#include <exception>
#include <string>
#include <utility>

namespace torvo {

/// A document that does not hold what it should. The text names the key path and what is wrong
/// there: "recipes[3].channels.2.sourceURL: missing".
class DecodingError : public std::exception {
public:
    DecodingError(std::string keyPath, std::string reason)
        : keyPath_(std::move(keyPath)),
          reason_(std::move(reason)),
          description_(keyPath_.empty() ? reason_ : keyPath_ + ": " + reason_) {}

    /// The same error, in the document of this name.
    DecodingError in(const std::string& documentName) const {
        auto error = *this;
        error.documentName_ = documentName;
        return error;
    }

    const std::string& documentName() const { return documentName_; } ///< empty when unknown
    const std::string& keyPath() const { return keyPath_; } ///< empty for the document itself
    const std::string& reason() const { return reason_; }
    const std::string& errorDescription() const { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

private:
    std::string documentName_;
    std::string keyPath_;
    std::string reason_;
    std::string description_;
};

} // namespace torvo
