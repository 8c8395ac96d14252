#include "Platform/FileURL.h"

#include "Platform/UnicodeText.h"

#include <utility>
#include <vector>

namespace torvo {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

/// Whether `c` is a `pchar` of RFC 3986 or the slash between segments.
bool isUnreserved(char c) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))
        return true;
    return std::string_view("-._~!$&'()*+,;=:@/").find(c) != std::string_view::npos;
}

std::optional<unsigned> hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return std::nullopt;
}

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        if (text.size() - i < 3)
            return std::nullopt;
        const auto high = hexValue(text[i + 1]);
        const auto low = hexValue(text[i + 2]);
        if (!high || !low)
            return std::nullopt;
        decoded += static_cast<char>(*high * 16 + *low);
        i += 2;
    }
    return decoded;
}

bool consumePrefixIgnoringCase(std::string_view& text, std::string_view lowerCasePrefix) {
    if (text.size() < lowerCasePrefix.size())
        return false;
    for (std::size_t i = 0; i < lowerCasePrefix.size(); ++i) {
        const char c = text[i];
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        if (lower != lowerCasePrefix[i])
            return false;
    }
    text.remove_prefix(lowerCasePrefix.size());
    return true;
}

std::vector<std::string_view> components(std::string_view path) {
    std::vector<std::string_view> found;
    std::size_t start = 0;
    while (start < path.size()) {
        auto end = path.find('/', start);
        if (end == std::string_view::npos)
            end = path.size();
        if (end > start)
            found.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return found;
}

std::string joined(const std::vector<std::string_view>& parts) {
    std::string path;
    for (const auto part : parts) {
        path += '/';
        path += part;
    }
    return path.empty() ? "/" : path;
}

std::string_view lastComponent(std::string_view path) {
    return path.size() == 1 ? path : path.substr(path.rfind('/') + 1);
}

/// The position of the dot that separates name and extension, or npos.
std::size_t extensionDot(std::string_view name) {
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size())
        return std::string_view::npos;
    return dot;
}

} // namespace

FileURL::FileURL(const fs::path& path, Kind kind) : kind_(kind) {
    const auto absolute = path.is_absolute() ? path.native() : (fs::current_path() / path).native();
    if (absolute.ends_with('/'))
        kind_ = Kind::directory;
    path_ = joined(components(absolute));
}

std::optional<FileURL> FileURL::parse(std::string_view absoluteString) {
    auto rest = absoluteString;
    if (!consumePrefixIgnoringCase(rest, "file:"))
        return std::nullopt;
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        consumePrefixIgnoringCase(rest, "localhost");
    }
    if (!rest.starts_with('/') || rest.find_first_of("?#") != std::string_view::npos)
        return std::nullopt;
    const auto path = percentDecoded(rest);
    if (!path || path->find('\0') != std::string::npos)
        return std::nullopt;
    return FileURL(*path);
}

std::string FileURL::absoluteString() const {
    std::string text = "file://";
    for (const char c : path_) {
        if (isUnreserved(c)) {
            text += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            text += '%';
            text += hexDigits[byte >> 4U];
            text += hexDigits[byte & 15U];
        }
    }
    if (kind_ == Kind::directory && path_.size() > 1)
        text += '/';
    return text;
}

std::string FileURL::shownPath() const {
    return text::validUTF8(path_);
}

std::string FileURL::lastPathComponent() const {
    return text::validUTF8(lastComponent(path_));
}

std::string FileURL::pathExtension() const {
    const auto name = lastPathComponent();
    const auto dot = extensionDot(name);
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

std::string FileURL::lastPathComponentWithoutExtension() const {
    const auto name = lastPathComponent();
    return name.substr(0, extensionDot(name));
}

FileURL FileURL::fromNormalizedPath(std::string path, Kind kind) {
    FileURL url;
    url.path_ = std::move(path);
    url.kind_ = kind;
    return url;
}

FileURL FileURL::appendingPathComponent(std::string_view component, Kind kind) const {
    std::string path;
    path.reserve(path_.size() + 1 + component.size());
    path += path_;
    if (path.size() > 1)
        path += '/';
    path += component;
    const bool isPlain = !component.empty() && component.find('/') == std::string_view::npos;
    return isPlain ? fromNormalizedPath(std::move(path), kind) : FileURL(path, kind);
}

FileURL FileURL::deletingLastPathComponent() const {
    const auto slash = path_.rfind('/');
    return fromNormalizedPath(slash == 0 ? "/" : path_.substr(0, slash), Kind::directory);
}

FileURL FileURL::standardized() const {
    std::vector<std::string_view> kept;
    for (const auto part : components(path_)) {
        if (part == ".")
            continue;
        if (part != "..")
            kept.push_back(part);
        else if (!kept.empty())
            kept.pop_back();
    }
    return FileURL(joined(kept), kept.empty() ? Kind::directory : kind_);
}

} // namespace torvo
