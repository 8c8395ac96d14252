#include "Models/UserFacingDescription.h"
#include "Platform/LoadedLibrary.h"
#include "ScanFixture.h"

#include <gmock/gmock.h>

namespace torvo::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

TEST(LoadedLibraryTests, tellsWhichLibraryIsMissing) {
    EXPECT_THAT([] { symbolOfLibrary("/nowhere/decoders.so", "open"); },
                ThrowsMessage<BrokenInstallation>(AllOf(
                    HasSubstr("A part of this program cannot be loaded: /nowhere/decoders.so: "),
                    HasSubstr("No such file or directory. Installing it again may help."))));
}

TEST(LoadedLibraryTests, tellsWhatALibraryDoesNotHold) {
    EXPECT_THAT([] { symbolOfLibrary("libc.so.6", "torvoNothing"); },
                ThrowsMessage<BrokenInstallation>(
                    AllOf(HasSubstr("libc.so.6"), HasSubstr("torvoNothing"))));
}

TEST(LoadedLibraryTests, findsLibrariesBesideTheFolderOfTheProgram) {
    EXPECT_TRUE(std::filesystem::exists(installedLibrary(".") / "core-tests"));
}

TEST(LoadedLibraryTests, endsAScanInsteadOfCallingEverySampleUnsupported) {
    const ScanFixture fixture;
    fixture.addAudio("kick.flac");
    const SampleScanner scanner(std::make_shared<const BrokenInspector>(),
                                AudioCompatibilityEvaluator(), systemFileManager());
    EXPECT_THAT([&] { scanner.scan(fixture.root, GenerationMode::drums); },
                ThrowsMessage<BrokenInstallation>("decoders.so is gone."));
}

TEST(LoadedLibraryTests, isToldToTheUserAsItIs) {
    EXPECT_EQ(userFacingDescription(BrokenInstallation("decoders.so is gone.")),
              "decoders.so is gone.");
}

} // namespace
} // namespace torvo::test
