#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace torvo {

/// A location of the file scheme: an absolute path of raw bytes, and whether it was named as a
/// folder. Two URLs are equal when their URL strings are: a folder's ends in "/", a file's does
/// not.
class FileURL {
public:
    enum class Kind { file, directory };

    /// The root folder.
    FileURL() = default;

    /// A relative path is taken from the current directory. A trailing slash makes it a folder;
    /// doubled slashes are dropped, "." and ".." stay (see `standardized`).
    explicit FileURL(const std::filesystem::path& path, Kind kind = Kind::file);

    static FileURL directory(const std::filesystem::path& path) {
        return FileURL(path, Kind::directory);
    }

    /// Reads an absolute URL string (RFC 8089: "file:///path", "file:/path" or with the host
    /// "localhost"). Absent when it is no file URL, is relative, has a broken percent escape, an
    /// escaped NUL, a query or a fragment.
    static std::optional<FileURL> parse(std::string_view absoluteString);

    /// "file://" and the path with every byte outside RFC 3986's `pchar` percent-encoded. Reading
    /// it back gives an equal URL, whatever the bytes.
    std::string absoluteString() const;

    /// The raw path, without a trailing slash (the root excepted). Made anew for each call.
    std::filesystem::path path() const { return path_; }
    /// The bytes of the raw path.
    const std::string& nativePath() const { return path_; }
    bool hasDirectoryPath() const { return kind_ == Kind::directory; }

    /// The path as text: bytes that are not UTF-8 are replaced by U+FFFD.
    std::string shownPath() const;

    /// The last component as text ("/" for the root), bytes that are not UTF-8 replaced.
    std::string lastPathComponent() const;

    /// The text after the last dot of the last component, unless that dot is its first or last
    /// character; then it is empty.
    std::string pathExtension() const;

    /// The last component without that extension and its dot.
    std::string lastPathComponentWithoutExtension() const;

    /// Always one level below this location: a leading slash in `component` does not replace the
    /// path.
    FileURL appendingPathComponent(std::string_view component, Kind kind = Kind::file) const;
    FileURL deletingLastPathComponent() const;

    /// Without ".", ".." and doubled slashes; purely on the text, no file system access.
    FileURL standardized() const;

    friend bool operator==(const FileURL&, const FileURL&) = default;

private:
    /// Skips the normalisation of the constructor; `path` must be absolute, without repeated or
    /// trailing slashes.
    static FileURL fromNormalizedPath(std::string path, Kind kind);

    // As text: a library has a hundred thousand of these, and the standard library's path keeps
    // every component a second time.
    std::string path_ = "/";
    Kind kind_ = Kind::directory;
};

} // namespace torvo
