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

TEST(GenerationReport, containsACompleteRun) {
    const auto made = report();
    EXPECT_EQ(made.scanReport.sourceFolder, FileURL::directory("/Loops"));
    EXPECT_EQ(made.summary.banksWritten, 99);
    EXPECT_EQ(made.seed, 0xFFFFFFFFFFFFFFFF) << "the whole unsigned range";
    EXPECT_EQ(made.missingRequirements, (std::vector<std::string>{"Loop", "Stab"}));
}

TEST(GenerationReport, comparesEveryField) {
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

TEST(ExportJob, combinesADocumentWithTheGivenSettings) {
    BankMappingDocument document{
        .version = 2,
        .sourceFolder = FileURL::directory("/Kit A"),
        .generationMode = GenerationMode::stabs,
        .naming = BankNameScheme("Kit A", "Other"),
        .generationTemplate = generationTemplate(GenerationMode::stabs),
        .recipes = {{3, "Other003", {}, 77, true}, {4, "x", {}, 78, false}},
        .exportedAt = {}};
    const auto out = FileURL::directory("/card");
    const TorvoMetadataOptions options(9, TorvoPlaybackRate::rate11, TorvoFilterType::notch, true,
                                       {2});
    const auto job = exportJob(document, out, options);
    EXPECT_EQ(job.sourceFolder, document.sourceFolder);
    EXPECT_EQ(job.exportFolder, out);
    EXPECT_EQ(job.generationTemplate, document.generationTemplate);
    EXPECT_EQ(job.targetBankCount, 2) << "as many as were made, not as many as were wanted";
    EXPECT_EQ(job.seed, 77U) << "of the first recipe";
    EXPECT_EQ(job.naming, document.naming);
    EXPECT_EQ(job.metadataOptions, options);
    EXPECT_EQ(job.recipes, document.recipes);
    document.recipes.clear();
    EXPECT_EQ(exportJob(document, out, options).targetBankCount, 0);
    EXPECT_EQ(exportJob(document, out, options).seed, 0U);
}

} // namespace
} // namespace torvo::test
