#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Unicode operations on UTF-8 text, implemented with ICU. Every function accepts any bytes:
/// invalid UTF-8 is treated as U+FFFD, which is not alphanumeric. ICU errors are thrown as
/// `std::runtime_error`.
namespace torvo::text {

/// `text` with each ill-formed byte sequence replaced by U+FFFD.
std::string validUTF8(std::string_view text);

/// Full, locale-independent case mappings.
std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

/// Whether both texts are equal after case folding (Unicode default caseless matching).
bool equalsIgnoringCase(std::string_view left, std::string_view right);

/// The maximal runs of alphanumeric characters (Unicode categories L, M and N), in order.
std::vector<std::string> alphanumericWords(std::string_view text);

/// The number of user-perceived characters (extended grapheme clusters).
std::size_t characterCount(std::string_view text);
/// The first `count` user-perceived characters, or the whole text when it is shorter.
std::string firstCharacters(std::string_view text, std::size_t count);

/// The Unicode scalar values of `text`.
std::u32string scalars(std::string_view text);

/// Converts to ASCII: an accented letter becomes its base letter, every other non-ASCII character
/// becomes "?".
std::string lossyASCII(std::string_view text);

} // namespace torvo::text
