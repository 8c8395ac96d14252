#include "TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace torvo::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    auto pattern = (fs::temp_directory_path() / "torvo-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder at " + pattern);
    path_ = fs::canonical(pattern);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    // A test may have locked a folder.
    for (fs::recursive_directory_iterator
             it(path_, fs::directory_options::skip_permission_denied, ignored),
         end;
         it != end; it.increment(ignored)) {
        if (it->is_directory(ignored) && !it->is_symlink(ignored))
            fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
    fs::remove_all(path_, ignored);
}

fs::path TemporaryFolder::operator/(std::string_view relative) const {
    return path_.string() + "/" + std::string(relative);
}

void saveFile(const fs::path& path, std::span<const std::byte> bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    std::ranges::transform(bytes, std::ostreambuf_iterator<char>(file),
                           [](std::byte byte) { return static_cast<char>(byte); });
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path.string());
}

fs::path TemporaryFolder::write(std::string_view relative, std::span<const std::byte> bytes) const {
    const auto path = *this / relative;
    saveFile(path, bytes);
    return path;
}

fs::path TemporaryFolder::write(std::string_view relative, std::string_view text) const {
    return write(relative, std::as_bytes(std::span(text)));
}

fs::path TemporaryFolder::createFolder(std::string_view relative) const {
    const auto path = *this / relative;
    fs::create_directories(path);
    return path;
}

std::string textOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path.string());
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::byte> bytesOf(const fs::path& path) {
    return bytes(textOf(path));
}

std::vector<std::byte> bytes(std::string_view text) {
    const auto view = std::as_bytes(std::span(text));
    return {view.begin(), view.end()};
}

} // namespace torvo::test
