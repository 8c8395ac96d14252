#include "Models/UserFacingDescription.h"

#include "Platform/Error.h"
#include "Platform/UnicodeText.h"

#include <new>

namespace torvo {

namespace {

std::string asSentence(std::string text) {
    if (!text.ends_with('.'))
        text += '.';
    return text;
}

} // namespace

std::string userFacingDescription(const std::exception& error) {
    if (const auto* known = dynamic_cast<const Error*>(&error))
        return known->userFacingDescription();
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr)
        return "There is not enough memory.";
    return asSentence(std::string("Something unexpected went wrong: ") + error.what());
}

std::string userFacingDescription(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& known) {
        return userFacingDescription(known);
    } catch (...) {
        return "Something unexpected went wrong.";
    }
}

std::optional<std::filesystem::path> failedFile(const std::exception& error) {
    const auto* const known = dynamic_cast<const Error*>(&error);
    auto file = known != nullptr ? known->file() : std::nullopt;
    if (file &&
        userFacingDescription(error).find(text::validUTF8(file->native())) != std::string::npos)
        file.reset();
    return file;
}

std::optional<std::filesystem::path> failedFile(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& known) {
        return failedFile(known);
    } catch (...) {
        return std::nullopt;
    }
}

} // namespace torvo
