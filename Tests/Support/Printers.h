#pragma once

#include "Models/GenerationError.h"
#include "Platform/FileURL.h"

#include <ostream>

// How GoogleTest prints the records in failure messages.
namespace torvo {

inline void PrintTo(const GenerationError& error, std::ostream* out) {
    *out << error.errorDescription();
}

inline void PrintTo(const FileURL& url, std::ostream* out) {
    *out << url.absoluteString();
}

} // namespace torvo
