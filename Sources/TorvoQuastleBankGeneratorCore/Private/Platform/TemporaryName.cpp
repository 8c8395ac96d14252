#include "Platform/TemporaryName.h"

#include <array>
#include <cstdio>
#include <random>

namespace torvo {

namespace {

constexpr std::string_view prefix = ".torvo-";
constexpr std::string_view suffix = ".tmp";
constexpr std::size_t digitCount = 16;

} // namespace

std::string temporaryName() {
    static thread_local std::random_device random;
    std::array<char, digitCount + 1> digits{};
    static_cast<void>(std::snprintf(digits.data(), digits.size(), "%08x%08x", random(), random()));
    return std::string(prefix) + digits.data() + std::string(suffix);
}

bool isTemporaryName(std::string_view name) {
    return name.size() == prefix.size() + digitCount + suffix.size() && name.starts_with(prefix) &&
           name.ends_with(suffix) &&
           name.substr(prefix.size(), digitCount).find_first_not_of("0123456789abcdef") ==
               std::string_view::npos;
}

} // namespace torvo
