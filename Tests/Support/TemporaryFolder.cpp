#include "TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

/// Removes the files of an open folder. Returns the names of its subfolders.
std::vector<std::string> removeFiles(int folder) {
    std::vector<std::string> subfolders;
    DIR* listing = ::fdopendir(::dup(folder));
    if (listing == nullptr)
        return subfolders;
    while (const dirent* entry = ::readdir(listing)) {
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && ::unlinkat(folder, name.c_str(), 0) != 0)
            subfolders.push_back(name);
    }
    ::closedir(listing);
    return subfolders;
}

/// Opens a folder that may be locked; -1 when it cannot be opened.
int openLockedFolder(int parent, const char* name) {
    ::fchmodat(parent, name, S_IRWXU, 0);
    return ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

/// Some test trees exceed the maximum path length and the limit of open files, so only one folder
/// is open at a time.
void removeTree(const fs::path& root) {
    struct Level {
        std::string name;
        std::vector<std::string> subfolders; ///< not removed yet
    };
    int folder = openLockedFolder(AT_FDCWD, root.c_str());
    if (folder < 0)
        return;
    std::vector<Level> levels{{root.filename(), removeFiles(folder)}};
    while (!levels.empty()) {
        if (!levels.back().subfolders.empty()) {
            std::string name = std::move(levels.back().subfolders.back());
            levels.back().subfolders.pop_back();
            const int child = openLockedFolder(folder, name.c_str());
            if (child < 0)
                continue;
            ::close(folder);
            folder = child;
            levels.push_back({std::move(name), removeFiles(folder)});
        } else {
            const int parent = ::openat(folder, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            ::close(folder);
            folder = parent;
            ::unlinkat(folder, levels.back().name.c_str(), AT_REMOVEDIR);
            levels.pop_back();
        }
    }
    ::close(folder);
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    auto pattern = (fs::temp_directory_path() / "torvo-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder at " + pattern);
    path_ = fs::canonical(pattern);
}

TemporaryFolder::~TemporaryFolder() {
    removeTree(path_);
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
