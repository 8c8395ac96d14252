#pragma once

#include "Platform/FileURL.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torvo::test {

/// A temporary folder for one test; its path has no symbolic links, and its content is removed by
/// the destructor.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    FileURL url() const { return FileURL::directory(path_); }
    /// A path inside, raw bytes.
    std::filesystem::path operator/(std::string_view relative) const;

    /// Writes a file inside and creates its parent folders; returns its path.
    std::filesystem::path write(std::string_view relative, std::span<const std::byte> bytes) const;
    std::filesystem::path write(std::string_view relative, std::string_view text) const;
    std::filesystem::path createFolder(std::string_view relative) const;

private:
    std::filesystem::path path_;
};

/// Writes a file and creates its parent folders.
void saveFile(const std::filesystem::path& path, std::span<const std::byte> bytes);
std::vector<std::byte> bytesOf(const std::filesystem::path& path);
std::string textOf(const std::filesystem::path& path);
std::vector<std::byte> bytes(std::string_view text);

} // namespace torvo::test
