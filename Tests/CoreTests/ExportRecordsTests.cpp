#include "Models/ExportRecords.h"

#include <gtest/gtest.h>

namespace torvo::test {
namespace {

GenerationReport report() {
    return {{GenerationMode::loops, FileURL::directory("/Loops"), {}, {}, {}},
            {FileURL::directory("/card/Loops/QZT508"), 99, 1000, 584, 7, 792},
            0xFFFFFFFFFFFFFFFF,
            {"Loop", "Stab"}};
}

TEST(GenerationReport, holdsOneWholeRun) {
    const auto made = report();
    EXPECT_EQ(made.scanReport.sourceFolder, FileURL::directory("/Loops"));
    EXPECT_EQ(made.summary.banksWritten, 99);
    EXPECT_EQ(made.seed, 0xFFFFFFFFFFFFFFFF) << "the whole unsigned range";
    EXPECT_EQ(made.missingRequirements, (std::vector<std::string>{"Loop", "Stab"}));
}

TEST(GenerationReport, isEqualInAllFieldsOrNotAtAll) {
    const auto made = report();
    EXPECT_EQ(report(), made);
    auto other = made;
    other.scanReport.mode = GenerationMode::stabs;
    EXPECT_NE(other, made);
    other = made;
    other.summary.poolFilesWritten = 0;
    EXPECT_NE(other, made);
    other = made;
    other.seed = 0;
    EXPECT_NE(other, made);
    other = made;
    other.missingRequirements.pop_back();
    EXPECT_NE(other, made);
}

} // namespace
} // namespace torvo::test
