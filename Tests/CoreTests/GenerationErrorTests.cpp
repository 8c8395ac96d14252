#include "Models/GenerationError.h"

#include <gtest/gtest.h>

namespace torvo::test {
namespace {

struct Row {
    GenerationError error;
    const char* description;
};

std::vector<Row> rows() {
    return {
        {GenerationError::requiredRoleMissing(ChannelRole::kick),
         "No usable samples were found for Kick."},
        {GenerationError::requiredRoleMissing(ChannelRole::closedHat),
         "No usable samples were found for Closed Hat."},
        {GenerationError::insufficientPercussion(2),
         "At least 3 percussion samples are required for channels 6-8, but only 2 usable files "
         "were found."},
        {GenerationError::insufficientLoops(5),
         "At least 8 loop files are required for Loops mode, but only 5 usable files were found."},
        {GenerationError::insufficientStabs(0),
         "At least 8 stab files are required for Stabs mode, but only 0 usable files were found."},
        {GenerationError::unsupportedAudio(FileURL("/Kit/Loops/break.aif")),
         "Unsupported audio file: break.aif"},
        {GenerationError::exportFailed("Missing channel 7 for bank 12"),
         "Missing channel 7 for bank 12"},
        {GenerationError::exportFailed(""), ""},
        {GenerationError::noRecipesGenerated(), "No banks could be generated."},
    };
}

TEST(GenerationError, hasADescription) {
    for (const auto& row : rows()) {
        EXPECT_EQ(row.error.errorDescription(), row.description);
        EXPECT_STREQ(row.error.what(), row.description);
    }
}

TEST(GenerationError, comparesCaseAndValue) {
    const auto left = rows();
    const auto right = rows();
    for (std::size_t i = 0; i < left.size(); ++i) {
        for (std::size_t j = 0; j < right.size(); ++j)
            EXPECT_EQ(left[i].error == right[j].error, i == j)
                << left[i].description << " / " << right[j].description;
    }
    EXPECT_NE(GenerationError::insufficientLoops(1), GenerationError::insufficientLoops(2));
    EXPECT_NE(GenerationError::insufficientLoops(1), GenerationError::insufficientStabs(1));
    EXPECT_NE(GenerationError::unsupportedAudio(FileURL("/a/x")),
              GenerationError::unsupportedAudio(FileURL("/b/x")))
        << "the same text for different files";
}

TEST(GenerationError, reportsItsCase) {
    const auto error = GenerationError::insufficientPercussion(1);
    const auto* value = std::get_if<GenerationError::InsufficientPercussion>(&error.value());
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->found, 1);
}

} // namespace
} // namespace torvo::test
