#pragma once

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace torvo::bench {

/// Invalid arguments; the message explains the error.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The items of a list like "1,3,8", including empty ones.
inline std::vector<std::string_view> partsOf(std::string_view list) {
    std::vector<std::string_view> parts;
    for (std::size_t at = 0; at <= list.size();) {
        const auto end = std::min(list.find(',', at), list.size());
        parts.push_back(list.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

} // namespace torvo::bench
