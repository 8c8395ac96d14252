#include "Platform/UnicodeText.h"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace torvo::text {

namespace {

bool isASCII(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

icu::UnicodeString fromUTF8(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::string toUTF8(const icu::UnicodeString& text) {
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

bool isAlphanumeric(UChar32 c) {
    return (U_GET_GC_MASK(c) & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}

/// Calls `visit(scalar, offset)` for each scalar; offsets count UTF-16 code units.
template <typename Visit>
void forEachScalar(const icu::UnicodeString& text, Visit visit) {
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1))
        visit(text.char32At(i), i);
}

bool isAlphanumericASCII(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// Avoids ICU, because most file names are ASCII and a sample library may have 100,000 of them.
std::vector<std::string> alphanumericASCIIWords(std::string_view text) {
    std::vector<std::string> words;
    for (auto position = text.begin();;) {
        const auto start = std::find_if(position, text.end(), isAlphanumericASCII);
        if (start == text.end())
            return words;
        position = std::find_if_not(start, text.end(), isAlphanumericASCII);
        words.emplace_back(start, position);
    }
}

void requireSuccess(UErrorCode status, const char* what) {
    if (U_FAILURE(status))
        throw std::runtime_error(std::string(what) + ": " + u_errorName(status));
}

/// The end offsets of the grapheme clusters, in UTF-16 code units.
std::vector<std::int32_t> clusterEnds(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    requireSuccess(status, "No grapheme cluster rules");
    iterator->setText(text);
    std::vector<std::int32_t> ends;
    for (auto end = iterator->next(); end != icu::BreakIterator::DONE; end = iterator->next())
        ends.push_back(end);
    return ends;
}

} // namespace

std::string validUTF8(std::string_view text) {
    return isASCII(text) ? std::string(text) : toUTF8(fromUTF8(text));
}

std::string lowercased(std::string_view text) {
    if (!isASCII(text))
        return toUTF8(fromUTF8(text).toLower(icu::Locale::getRoot()));
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

std::string uppercased(std::string_view text) {
    return toUTF8(fromUTF8(text).toUpper(icu::Locale::getRoot()));
}

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
    return fromUTF8(left).caseCompare(fromUTF8(right), U_FOLD_CASE_DEFAULT) == 0;
}

std::vector<std::string> alphanumericWords(std::string_view text) {
    if (isASCII(text))
        return alphanumericASCIIWords(text);
    // Invalid UTF-8 becomes U+FFFD, a symbol, and therefore separates words.
    const auto unicode = fromUTF8(text);
    std::vector<std::string> words;
    std::int32_t wordStart = 0;
    const auto endWord = [&](std::int32_t end) {
        if (end > wordStart)
            words.push_back(toUTF8(unicode.tempSubStringBetween(wordStart, end)));
    };
    forEachScalar(unicode, [&](UChar32 c, std::int32_t offset) {
        if (isAlphanumeric(c))
            return;
        endWord(offset);
        wordStart = unicode.moveIndex32(offset, 1);
    });
    endWord(unicode.length());
    return words;
}

std::size_t characterCount(std::string_view text) {
    return clusterEnds(fromUTF8(text)).size();
}

std::string firstCharacters(std::string_view text, std::size_t count) {
    const auto unicode = fromUTF8(text);
    const auto ends = clusterEnds(unicode);
    if (count >= ends.size())
        return toUTF8(unicode);
    return count == 0 ? std::string() : toUTF8(unicode.tempSubString(0, ends[count - 1]));
}

std::u32string scalars(std::string_view text) {
    std::u32string found;
    forEachScalar(fromUTF8(text),
                  [&](UChar32 c, std::int32_t) { found.push_back(static_cast<char32_t>(c)); });
    return found;
}

std::string lossyASCII(std::string_view text) {
    if (isASCII(text))
        return std::string(text);
    UErrorCode status = U_ZERO_ERROR;
    const auto* normalizer = icu::Normalizer2::getNFDInstance(status);
    requireSuccess(status, "No canonical decomposition");
    // Compose first, so that a letter with combining accents becomes one character.
    const auto* composer = icu::Normalizer2::getNFCInstance(status);
    requireSuccess(status, "No canonical composition");
    const auto composed = composer->normalize(fromUTF8(text), status);
    requireSuccess(status, "Composition failed");

    std::string ascii;
    forEachScalar(composed, [&](UChar32 c, std::int32_t) {
        icu::UnicodeString decomposition;
        const UChar32 base =
            normalizer->getDecomposition(c, decomposition) ? decomposition.char32At(0) : c;
        if (base < 0x80)
            ascii += static_cast<char>(base);
        else if ((U_GET_GC_MASK(base) & U_GC_M_MASK) == 0 || ascii.empty())
            ascii += '?';
    });
    return ascii;
}

} // namespace torvo::text
