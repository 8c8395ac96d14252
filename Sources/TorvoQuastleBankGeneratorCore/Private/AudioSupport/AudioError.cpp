#include "AudioSupport/AudioError.h"

#include "Models/GenerationError.h"
#include "Platform/FileError.h"

#include <string>

namespace torvo {

namespace {

[[noreturn]] void fail(std::string_view message, int status, const std::filesystem::path& file) {
    throw GenerationError::exportFailed(std::string(message) + " (OSStatus " +
                                        std::to_string(status) + ")")
        .withFile(file);
}

} // namespace

void throwWithStatus(std::string_view message, const std::filesystem::path& file) {
    try {
        throw;
    } catch (const AudioError& error) {
        fail(message, error.status(), file);
    } catch (const FileError& error) {
        fail(message, -error.code().value(), file);
    }
}

} // namespace torvo
