#include "Platform/UnicodeText.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace torvo::test {
namespace {

using Words = std::vector<std::string>;

TEST(UnicodeText, replacesInvalidUTF8) {
    struct Row {
        std::string bytes;
        std::string text;
    };
    const Row rows[] = {
        {"plain", "plain"},
        {"Größe", "Größe"},
        {"\xFF", "\uFFFD"},
        {"a\xC3", "a\uFFFD"},                             // cut in the middle
        {"\xC0\xAF", "\uFFFD\uFFFD"},                     // overlong
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},           // half of a surrogate pair
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"}, // beyond Unicode
        {std::string("a\0b", 3), std::string("a\0b", 3)},
    };
    for (const auto& row : rows)
        EXPECT_EQ(text::validUTF8(row.bytes), row.text);
}

TEST(UnicodeText, usesFullCaseMappings) {
    EXPECT_EQ(text::lowercased("Closed HAT 01"), "closed hat 01");
    EXPECT_EQ(text::lowercased("ÉTÉ ΑΒΓ ЖУК"), "été αβγ жук");
    EXPECT_EQ(text::lowercased("ΟΔΟΣ"), "οδος") << "the final sigma";
    EXPECT_EQ(text::lowercased("I"), "i") << "whatever the language of the desktop";
    EXPECT_EQ(text::lowercased("İ"), "i\u0307");
    EXPECT_EQ(text::uppercased("straße"), "STRASSE");
    EXPECT_EQ(text::uppercased("ŉ"), "\u02BCN");
    EXPECT_EQ(text::uppercased("i"), "I");
}

TEST(UnicodeText, comparesIgnoringCase) {
    EXPECT_TRUE(text::equalsIgnoringCase("QZT508", "qzt508"));
    EXPECT_TRUE(text::equalsIgnoringCase("STRASSE", "straße"));
    EXPECT_FALSE(text::equalsIgnoringCase("QZT508", "QZT508 "));
    EXPECT_FALSE(text::equalsIgnoringCase("é", "e"));
}

TEST(UnicodeText, splitsWordsAtOtherCharactersThanLettersMarksAndNumbers) {
    EXPECT_EQ(text::alphanumericWords("Closed_HiHat-01 (Dry)"),
              (Words{"Closed", "HiHat", "01", "Dry"}));
    EXPECT_EQ(text::alphanumericWords(""), Words{});
    EXPECT_EQ(text::alphanumericWords(" ._-"), Words{});
    EXPECT_EQ(text::alphanumericWords("太鼓・ドラム"), (Words{"太鼓", "ドラム"}));
    EXPECT_EQ(text::alphanumericWords("e\u0301te\u0301"), Words{"e\u0301te\u0301"});
    EXPECT_EQ(text::alphanumericWords("½²Ⅷ٣"), Words{"½²Ⅷ٣"});
    EXPECT_EQ(text::alphanumericWords("a\xFF"
                                      "b"),
              (Words{"a", "b"}));
    EXPECT_EQ(text::alphanumericWords("🥁kick🥁"), Words{"kick"});
    EXPECT_EQ(text::alphanumericWords("𝒦𝒾𝓉 2"), (Words{"𝒦𝒾𝓉", "2"})) << "outside the first plane";
}

TEST(UnicodeText, countsGraphemeClusters) {
    EXPECT_EQ(text::characterCount(""), 0U);
    EXPECT_EQ(text::characterCount("kit"), 3U);
    EXPECT_EQ(text::characterCount("e\u0301"), 1U);
    EXPECT_EQ(text::characterCount("👩‍👩‍👧"), 1U);
    EXPECT_EQ(text::characterCount("각"), 1U);
    EXPECT_EQ(text::characterCount("각"), 1U) << "one syllable of three letters";
}

TEST(UnicodeText, takesTheFirstCharacters) {
    EXPECT_EQ(text::firstCharacters("drums", 3), "dru");
    EXPECT_EQ(text::firstCharacters("drums", 5), "drums");
    EXPECT_EQ(text::firstCharacters("drums", 9), "drums");
    EXPECT_EQ(text::firstCharacters("drums", 0), "");
    EXPECT_EQ(text::firstCharacters("", 0), "");
    EXPECT_EQ(text::firstCharacters("e\u0301a", 1), "e\u0301");
}

TEST(UnicodeText, listsScalars) {
    EXPECT_EQ(text::scalars("aé🥁\xFF"), U"aé🥁\uFFFD");
    EXPECT_EQ(text::scalars("e\u0301"), U"e\u0301");
}

TEST(UnicodeText, transliteratesToASCII) {
    struct Row {
        const char* text;
        const char* ascii;
    };
    const Row rows[] = {
        {"Drums001", "Drums001"},
        {"Élanvi007", "Elanvi007"},
        {"E\u0301lan", "Elan"},
        {"Größe", "Gro?e"},
        {"ドラム001", "???001"},
        {"a🥁b", "a?b"},
        {"naïve Çå", "naive Ca"},
        {"Ǘ", "U"},
        {"\xFF", "?"},
        {"\u0301x", "?x"},
        {"x\u20DD", "x"},
        {"", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(text::lossyASCII(row.text), row.ascii) << row.text;
}

RC_GTEST_PROP(UnicodeText, givesASCIIForAnyBytes, (const std::string& bytes)) {
    for (const char c : text::lossyASCII(bytes))
        RC_ASSERT(static_cast<unsigned char>(c) < 0x80);
}

RC_GTEST_PROP(UnicodeText, keepsValidTextUnchanged, (const std::string& bytes)) {
    const auto valid = text::validUTF8(bytes);
    RC_ASSERT(text::validUTF8(valid) == valid);
    RC_ASSERT(text::scalars(valid) == text::scalars(bytes));
    RC_ASSERT(text::characterCount(valid) <= text::scalars(valid).size());
}

} // namespace
} // namespace torvo::test
