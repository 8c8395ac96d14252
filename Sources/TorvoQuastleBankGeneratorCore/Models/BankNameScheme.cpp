#include "Models/BankNameScheme.h"

#include "Platform/UnicodeText.h"

#include <cstddef>
#include <utility>

namespace torvo {

namespace {

constexpr std::size_t prefixLength = 6; ///< user-perceived characters

std::string makePrefix(const std::string& name) {
    std::string prefix;
    for (const auto& word : text::alphanumericWords(name)) {
        const auto length = text::characterCount(prefix);
        if (length >= prefixLength)
            break;
        prefix += text::firstCharacters(word, prefixLength - length);
    }
    if (prefix.empty())
        return "Bank";
    // Capitalise the first character of the prefix, not of each word.
    const auto first = text::firstCharacters(prefix, 1);
    return text::uppercased(first) + prefix.substr(first.size());
}

} // namespace

BankNameScheme::BankNameScheme(std::string folderName)
    : sourceFolderName(std::move(folderName)), prefix(makePrefix(sourceFolderName)) {}

BankNameScheme::BankNameScheme(std::string folderName, std::string bankPrefix)
    : sourceFolderName(std::move(folderName)), prefix(std::move(bankPrefix)) {}

std::string BankNameScheme::bankName(std::int64_t index) const {
    return prefix + zeroPadded(index, 3);
}

std::string zeroPadded(std::int64_t number, int width) {
    auto digits = std::to_string(number);
    const bool negative = number < 0;
    while (static_cast<int>(digits.size()) < width)
        digits.insert(negative ? 1 : 0, 1, '0');
    return digits;
}

} // namespace torvo
