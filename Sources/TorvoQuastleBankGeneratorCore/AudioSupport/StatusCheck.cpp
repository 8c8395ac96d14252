#include "AudioSupport/StatusCheck.h"

#include "AudioSupport/AudioError.h"
#include "Models/GenerationError.h"
#include "Platform/FileError.h"

namespace torvo {

namespace {

[[noreturn]] void fail(std::string_view message, int status) {
    throw GenerationError::exportFailed(std::string(message) + " (OSStatus " +
                                        std::to_string(status) + ")");
}

} // namespace

void throwWithStatus(std::string_view message) {
    try {
        throw;
    } catch (const AudioError& error) {
        fail(message, error.status());
    } catch (const FileError& error) {
        fail(message, -error.code().value());
    }
}

} // namespace torvo
