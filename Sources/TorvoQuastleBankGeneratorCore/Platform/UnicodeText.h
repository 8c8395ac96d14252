#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Unicode operations on UTF-8 text. Every function takes any bytes: what is not UTF-8 counts as
/// U+FFFD, which is no letter. What the Unicode library refuses to do is a `std::runtime_error`.
namespace torvo::text {

/// The same text, with each ill-formed byte sequence replaced by U+FFFD.
std::string validUTF8(std::string_view text);

/// Full, locale-independent case mappings.
std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

/// True when both fold to the same text (Unicode default caseless matching).
bool equalsIgnoringCase(std::string_view left, std::string_view right);

/// The maximal runs of alphanumeric characters (Unicode categories L, M and N), in order.
std::vector<std::string> alphanumericWords(std::string_view text);

/// User-perceived characters (extended grapheme clusters).
std::size_t characterCount(std::string_view text);
/// The first `count` of them, or the whole text when it is shorter.
std::string firstCharacters(std::string_view text, std::size_t count);

/// One element for each Unicode scalar.
std::u32string scalars(std::string_view text);

/// ASCII as far as it goes: an accented letter becomes its base letter, every other character that
/// ASCII lacks becomes "?".
std::string lossyASCII(std::string_view text);

} // namespace torvo::text
