#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace torvo::test {

/// One item of a tree with everything that a program could change.
struct TreeItem {
    std::uint32_t mode = 0;        ///< kind and permissions
    std::int64_t modifiedTime = 0; ///< nanoseconds since 1970, 0 when times are not compared
    std::string content;           ///< the bytes of a file, the target of a link

    friend bool operator==(const TreeItem&, const TreeItem&) = default;
};

/// The items below a folder by their relative paths, the folder itself as ".".
using TreeSnapshot = std::map<std::string, TreeItem>;

/// Whether modification times are compared.
enum class Times { count, doNotCount };

/// Does not follow links. Sockets, pipes and devices have no content.
TreeSnapshot snapshotOf(const std::filesystem::path& folder, Times times = Times::count);

/// Everything below a folder without its permissions and times: a file's bytes, "/" for a folder,
/// "-> target" for a link.
std::map<std::string, std::string> contentsOf(const std::filesystem::path& folder);

/// One line for each item that differs: "+" added, "-" removed, "!" changed.
std::vector<std::string> differences(const TreeSnapshot& before, const TreeSnapshot& after);

} // namespace torvo::test
