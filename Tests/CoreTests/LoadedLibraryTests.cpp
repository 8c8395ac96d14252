#include "Models/UserFacingDescription.h"
#include "Platform/LoadedLibrary.h"
#include "ScanFixture.h"

#include <gmock/gmock.h>

namespace torvo::test {
namespace {

/// The function that Tests/CoreTests/StampedLibrary.cpp exports.
constexpr auto stamp = "1.0.0 of the test";

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

TEST(LoadedLibraryTests, namesAMissingLibrary) {
    EXPECT_THAT([] { symbolOfLibrary("/nowhere/decoders.so", "open", "stamp", stamp); },
                ThrowsMessage<BrokenInstallation>(AllOf(
                    HasSubstr("A part of this program cannot be loaded: /nowhere/decoders.so: "),
                    HasSubstr("No such file or directory. Installing it again may help."))));
}

TEST(LoadedLibraryTests, namesAMissingSymbol) {
    EXPECT_THAT([] { symbolOfLibrary(TORVO_STAMPED_LIBRARY, "torvoNothing", "testStamp", stamp); },
                ThrowsMessage<BrokenInstallation>(
                    AllOf(HasSubstr(TORVO_STAMPED_LIBRARY), HasSubstr("torvoNothing"))));
}

TEST(LoadedLibraryTests, findsSymbolsOfALibraryOfTheSameBuild) {
    auto* const answer = reinterpret_cast<int (*)()>(
        symbolOfLibrary(TORVO_STAMPED_LIBRARY, "testAnswer", "testStamp", stamp));
    EXPECT_EQ(answer(), 42);
}

TEST(LoadedLibraryTests, refusesALibraryOfAnotherBuild) {
    constexpr auto message =
        "A part of this program does not fit the rest of it. Start the program again.";
    EXPECT_THAT(
        [] {
            symbolOfLibrary(TORVO_STAMPED_LIBRARY, "testAnswer", "testStamp", "1.1.0 of the test");
        },
        ThrowsMessage<BrokenInstallation>(message));
    EXPECT_THAT([] { symbolOfLibrary("libc.so.6", "malloc", "torvoNoStamp", stamp); },
                ThrowsMessage<BrokenInstallation>(message));
}

TEST(LoadedLibraryTests, findsLibrariesRelativeToTheProgramFolder) {
    EXPECT_TRUE(std::filesystem::exists(installedLibrary(".") / "core-tests"));
}

TEST(LoadedLibraryTests, failsAScanInsteadOfIgnoringEverySample) {
    const ScanFixture fixture;
    fixture.addAudio("kick.flac");
    const SampleScanner scanner(std::make_shared<const BrokenInspector>(),
                                AudioCompatibilityEvaluator(), systemFileManager());
    EXPECT_THAT([&] { scanner.scan(fixture.root, GenerationMode::drums); },
                ThrowsMessage<BrokenInstallation>("decoders.so is gone."));
}

TEST(LoadedLibraryTests, isShownToTheUserUnchanged) {
    EXPECT_EQ(userFacingDescription(BrokenInstallation("decoders.so is gone.")),
              "decoders.so is gone.");
}

} // namespace
} // namespace torvo::test
