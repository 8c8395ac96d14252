#include "TreeSnapshot.h"

#include "TemporaryFolder.h"

#include <cerrno>
#include <sys/stat.h>
#include <system_error>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

TreeItem itemAt(const fs::path& path, Times times) {
    struct stat details {};
    if (::lstat(path.c_str(), &details) != 0)
        throw std::system_error(errno, std::generic_category(), path.string());
    TreeItem item;
    item.mode = details.st_mode;
    if (times == Times::count)
        item.modifiedTime =
            std::int64_t{details.st_mtim.tv_sec} * 1'000'000'000 + details.st_mtim.tv_nsec;
    if (S_ISREG(details.st_mode))
        item.content = textOf(path);
    else if (S_ISLNK(details.st_mode))
        item.content = fs::read_symlink(path).string();
    return item;
}

} // namespace

TreeSnapshot snapshotOf(const fs::path& folder, Times times) {
    TreeSnapshot snapshot;
    snapshot.emplace(".", itemAt(folder, times));
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        snapshot.emplace(entry.path().lexically_relative(folder), itemAt(entry.path(), times));
    return snapshot;
}

std::map<std::string, std::string> contentsOf(const fs::path& folder) {
    std::map<std::string, std::string> contents;
    for (const auto& [path, item] : snapshotOf(folder, Times::doNotCount)) {
        if (S_ISDIR(item.mode))
            contents[path] = "/";
        else
            contents[path] = (S_ISLNK(item.mode) ? "-> " : "") + item.content;
    }
    contents.erase(".");
    return contents;
}

std::vector<std::string> differences(const TreeSnapshot& before, const TreeSnapshot& after) {
    std::vector<std::string> lines;
    for (const auto& [path, item] : before) {
        const auto found = after.find(path);
        if (found == after.end())
            lines.push_back("- " + path);
        else if (found->second != item)
            lines.push_back("! " + path);
    }
    for (const auto& [path, item] : after) {
        if (!before.contains(path))
            lines.push_back("+ " + path);
    }
    return lines;
}

} // namespace torvo::test
