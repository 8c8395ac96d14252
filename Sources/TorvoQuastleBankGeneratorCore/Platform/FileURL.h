#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace torvo {

/// A file URL: an absolute path as raw bytes, and whether it denotes a folder. Two URLs are equal
/// when their URL strings are equal; the string of a folder ends in "/", that of a file does not.
class FileURL {
public:
    enum class Kind { file, directory };

    /// The root folder.
    FileURL() = default;

    /// Resolves a relative path against the current directory. A trailing slash denotes a folder.
    /// Repeated slashes are removed; "." and ".." are kept (see `standardized`).
    explicit FileURL(const std::filesystem::path& path, Kind kind = Kind::file);

    static FileURL directory(const std::filesystem::path& path) {
        return FileURL(path, Kind::directory);
    }

    /// Parses an absolute URL string (RFC 8089: "file:///path", "file:/path" or with the host
    /// "localhost"). Empty when it is not a file URL, is relative, or contains an invalid percent
    /// escape, an escaped NUL, a query or a fragment.
    static std::optional<FileURL> parse(std::string_view absoluteString);

    /// "file://" and the path, with every byte outside RFC 3986's `pchar` percent-encoded. Parsing
    /// the result gives an equal URL for any bytes.
    std::string absoluteString() const;

    /// The raw path without a trailing slash, except for the root. Each call creates a new object.
    std::filesystem::path path() const { return path_; }
    /// The bytes of the raw path.
    const std::string& nativePath() const { return path_; }
    bool hasDirectoryPath() const { return kind_ == Kind::directory; }

    /// The path as UTF-8 for display; invalid bytes are replaced by U+FFFD.
    std::string shownPath() const;

    /// The last component as UTF-8 ("/" for the root); invalid bytes are replaced by U+FFFD.
    std::string lastPathComponent() const;

    /// The text after the last dot of the last component. Empty when there is no dot, or when that
    /// dot is the first or last character.
    std::string pathExtension() const;

    /// The last component without `pathExtension` and its dot.
    std::string lastPathComponentWithoutExtension() const;

    /// Appends a component. A leading slash in `component` does not replace the path.
    FileURL appendingPathComponent(std::string_view component, Kind kind = Kind::file) const;
    FileURL deletingLastPathComponent() const;

    /// The URL without ".", ".." and repeated slashes. Works on the text only, without file system
    /// access.
    FileURL standardized() const;

    friend bool operator==(const FileURL&, const FileURL&) = default;

private:
    /// Skips the normalisation of the constructor; `path` must be absolute, without repeated or
    /// trailing slashes.
    static FileURL fromNormalizedPath(std::string path, Kind kind);

    // A string, because a sample library may have 100,000 URLs and std::filesystem::path stores
    // every component a second time.
    std::string path_ = "/";
    Kind kind_ = Kind::directory;
};

} // namespace torvo
