// URL strings and paths of arbitrary bytes: reading and writing are inverse.

#include "Platform/FileURL.h"
#include "Require.h"

#include <cstdint>
#include <string>

namespace torvo::fuzz {
namespace {

void parseAnything(const std::string& string) {
    const auto url = FileURL::parse(string);
    if (!url)
        return;
    require(url->path().is_absolute(), "a URL's path is absolute");
    require(url->path().native().find('\0') == std::string::npos, "a path holds no NUL");
    require(FileURL::parse(url->absoluteString()) == *url, "a written URL reads back");
    const auto standardized = url->standardized();
    require(standardized.standardized() == standardized, "standardised once is standardised");
    static_cast<void>(url->lastPathComponent());
    static_cast<void>(url->shownPath());
    require(url->appendingPathComponent("/x").deletingLastPathComponent().path() == url->path(),
            "a component goes one level down");
}

void encodeAnyPath(std::string path) {
    std::erase(path, '\0');
    for (const auto kind : {FileURL::Kind::file, FileURL::Kind::directory}) {
        const FileURL url(std::filesystem::path("/" + path), kind);
        require(FileURL::parse(url.absoluteString()) == url, "any path's URL reads back");
    }
}

} // namespace
} // namespace torvo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string string(data, data + size);
    torvo::fuzz::parseAnything(string);
    torvo::fuzz::encodeAnyPath(string);
    return 0;
}
