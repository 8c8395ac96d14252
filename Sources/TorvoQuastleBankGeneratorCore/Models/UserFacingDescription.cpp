#include "Models/UserFacingDescription.h"

#include "Models/DecodingError.h"
#include "Models/GenerationError.h"
#include "Platform/FileError.h"
#include "Platform/LoadedLibrary.h"

#include <new>

namespace torvo {

namespace {

std::string asSentence(std::string text) {
    if (!text.ends_with('.'))
        text += '.';
    return text;
}

std::string documentName(const DecodingError& error) {
    return error.documentName().empty() ? "The mapping document" : error.documentName();
}

} // namespace

std::string userFacingDescription(const std::exception& error) {
    if (const auto* generation = dynamic_cast<const GenerationError*>(&error))
        return generation->errorDescription();
    if (const auto* file = dynamic_cast<const FileError*>(&error))
        return file->errorDescription();
    if (const auto* decoding = dynamic_cast<const DecodingError*>(&error))
        return asSentence(documentName(*decoding) +
                          " cannot be used: " + decoding->errorDescription());
    if (const auto* installation = dynamic_cast<const BrokenInstallation*>(&error))
        return installation->what();
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

} // namespace torvo
