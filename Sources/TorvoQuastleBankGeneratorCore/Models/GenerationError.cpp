#include "Models/GenerationError.h"

#include <utility>

namespace torvo {

namespace {

std::string onlyUsable(std::string_view required, std::int64_t found) {
    return std::string(required) + ", but only " + std::to_string(found) +
           " usable files were found.";
}

struct Description {
    std::string operator()(const GenerationError::RequiredRoleMissing& error) const {
        return "No usable samples were found for " + std::string(displayName(error.role)) + ".";
    }
    std::string operator()(const GenerationError::InsufficientPercussion& error) const {
        return onlyUsable("At least 3 percussion samples are required for channels 6-8",
                          error.found);
    }
    std::string operator()(const GenerationError::InsufficientLoops& error) const {
        return onlyUsable("At least 8 loop files are required for Loops mode", error.found);
    }
    std::string operator()(const GenerationError::InsufficientStabs& error) const {
        return onlyUsable("At least 8 stab files are required for Stabs mode", error.found);
    }
    std::string operator()(const GenerationError::UnsupportedAudio& error) const {
        return "Unsupported audio file: " + error.url.lastPathComponent();
    }
    std::string operator()(const GenerationError::ExportFailed& error) const {
        return error.message;
    }
    std::string operator()(const GenerationError::NoRecipesGenerated& /*error*/) const {
        return "No banks could be generated.";
    }
};

} // namespace

GenerationError::GenerationError(Case value)
    : value_(std::move(value)), description_(std::visit(Description{}, value_)) {}

GenerationError GenerationError::withFile(std::filesystem::path file) const {
    auto error = *this;
    if (!error.file_)
        error.file_ = std::move(file);
    return error;
}

GenerationError GenerationError::requiredRoleMissing(ChannelRole role) {
    return GenerationError(RequiredRoleMissing{role});
}

GenerationError GenerationError::insufficientPercussion(std::int64_t found) {
    return GenerationError(InsufficientPercussion{found});
}

GenerationError GenerationError::insufficientLoops(std::int64_t found) {
    return GenerationError(InsufficientLoops{found});
}

GenerationError GenerationError::insufficientStabs(std::int64_t found) {
    return GenerationError(InsufficientStabs{found});
}

GenerationError GenerationError::unsupportedAudio(const FileURL& url) {
    return GenerationError(UnsupportedAudio{url}).withFile(url.path());
}

GenerationError GenerationError::exportFailed(std::string message) {
    return GenerationError(ExportFailed{std::move(message)});
}

GenerationError GenerationError::noRecipesGenerated() {
    return GenerationError(NoRecipesGenerated{});
}

} // namespace torvo
