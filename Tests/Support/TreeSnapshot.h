#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace torvo::test {

/// One item of a tree: everything that a program could change about it.
struct TreeItem {
    std::uint32_t mode = 0;        ///< kind and permissions
    std::int64_t modifiedTime = 0; ///< nanoseconds since 1970, 0 where times do not count
    std::string content;           ///< of a file its bytes, of a link its target

    friend bool operator==(const TreeItem&, const TreeItem&) = default;
};

/// The items below a folder by their relative paths, the folder itself as ".".
using TreeSnapshot = std::map<std::string, TreeItem>;

/// Whether two snapshots must agree in the times of change.
enum class Times { count, doNotCount };

/// Links are not followed. Sockets, pipes and devices are taken without their content.
TreeSnapshot snapshotOf(const std::filesystem::path& folder, Times times = Times::count);

/// Everything below a folder without its permissions and times: a file's bytes, "/" for a folder,
/// "-> target" for a link.
std::map<std::string, std::string> contentsOf(const std::filesystem::path& folder);

/// One line for each item that differs: "+" appeared, "-" is gone, "!" changed.
std::vector<std::string> differences(const TreeSnapshot& before, const TreeSnapshot& after);

} // namespace torvo::test
