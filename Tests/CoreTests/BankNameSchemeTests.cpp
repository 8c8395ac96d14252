#include "Models/BankNameScheme.h"

#include <gtest/gtest.h>

#include <limits>

namespace torvo::test {
namespace {

TEST(BankNameScheme, derivesThePrefixFromTheFolderName) {
    struct Row {
        const char* name;
        const char* prefix;
    };
    const Row rows[] = {
        // Only the first character of the whole prefix is capitalized, so not "MyDrum".
        {"my drum kit", "Mydrum"},
        {"808 kicks!!", "808kic"},
        {"Lo-Fi_Loops", "LoFiLo"},
        {"breakbeats", "Breakb"},
        {"kit", "Kit"},
        {"KIT", "KIT"},
        {"sixsix more", "Sixsix"},
        {"a b c d e f g h", "Abcdef"},
        {"  --!!", "Bank"},
        {"", "Bank"},
        {"\xFF\xFE", "Bank"},
        {"\xFFkit", "Kit"},
        {"élan vital", "Élanvi"},
        {"ドラムキット集音", "ドラムキット"},
        {"ß", "SS"},
        // Upper-casing the first character may exceed six characters.
        {"ﬃnders", "FFInders"},
        {"½ kit", "½kit"},
        {"कि ", "कि"},
        // A letter with its combining accents counts as one character.
        {"e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301",
         "E\u0301e\u0301e\u0301e\u0301e\u0301e\u0301"},
        // A leading accent of a word combines with the preceding letter, so six characters are
        // reached later.
        {"ab \u0301cde fgh", "Ab\u0301cdef"},
        // An emoji is not a letter.
        {"🥁 drums", "Drums"},
    };
    for (const auto& row : rows) {
        const BankNameScheme naming(row.name);
        EXPECT_EQ(naming.prefix, row.prefix) << row.name;
        EXPECT_EQ(naming.sourceFolderName, row.name);
        EXPECT_EQ(naming.exportFolderName(), row.name);
    }
}

TEST(BankNameScheme, keepsAGivenPrefixUnchanged) {
    const BankNameScheme naming("Kit", "a much longer prefix!");
    EXPECT_EQ(naming.prefix, "a much longer prefix!");
    EXPECT_EQ(naming.firstBankName(), "a much longer prefix!001");
    EXPECT_EQ(naming.exportFolderName(), "Kit");
}

TEST(BankNameScheme, numbersBanksWithAtLeastThreeDigits) {
    const BankNameScheme naming("drums");
    EXPECT_EQ(naming.bankName(7), "Drums007");
    EXPECT_EQ(naming.bankName(99), "Drums099");
    EXPECT_EQ(naming.bankName(100), "Drums100");
    EXPECT_EQ(naming.bankName(999), "Drums999");
    EXPECT_EQ(naming.bankName(1000), "Drums1000");
    EXPECT_EQ(naming.firstBankName(), "Drums001");
    EXPECT_EQ(naming.manifestFileName(), "Drums001.json");
}

TEST(BankNameScheme, comparesBothFields) {
    EXPECT_EQ(BankNameScheme("kit"), BankNameScheme("kit", "Kit"));
    EXPECT_NE(BankNameScheme("kit"), BankNameScheme("kit", "kit"));
    EXPECT_NE(BankNameScheme("kit"), BankNameScheme("Kit"));
}

TEST(ZeroPadded, padsLikePrintf) {
    for (const std::int64_t number :
         {std::int64_t{0}, std::int64_t{7}, std::int64_t{-7}, std::int64_t{-123},
          std::int64_t{12345}, std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()}) {
        for (const int width : {0, 1, 2, 3, 8}) {
            char expected[32];
            std::snprintf(expected, sizeof expected, "%0*lld", width,
                          static_cast<long long>(number));
            EXPECT_EQ(zeroPadded(number, width), expected);
        }
    }
}

} // namespace
} // namespace torvo::test
