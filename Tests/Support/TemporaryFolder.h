#pragma once

#include "Platform/FileURL.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torvo::test {

/// A folder of its own for one test, resolved and removed with everything in it at the end.
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

    /// Writes a file inside, with the folders above it; returns its path.
    std::filesystem::path write(std::string_view relative, std::span<const std::byte> bytes) const;
    std::filesystem::path write(std::string_view relative, std::string_view text) const;
    std::filesystem::path createFolder(std::string_view relative) const;

private:
    std::filesystem::path path_;
};

/// Writes a file, with the folders above it.
void saveFile(const std::filesystem::path& path, std::span<const std::byte> bytes);
std::vector<std::byte> bytesOf(const std::filesystem::path& path);
std::string textOf(const std::filesystem::path& path);
std::vector<std::byte> bytes(std::string_view text);

} // namespace torvo::test
