#include "Platform/Prefetch.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace torvo::test {
namespace {

constexpr std::uint64_t noLimit = 1U << 20U;

struct Prefetching : testing::Test {
    TemporaryFolder folder;
    std::filesystem::path file = folder.write("a.wav", "twelve bytes");
    std::filesystem::path otherVolume = "/proc";
};

TEST_F(Prefetching, ReadsAFileOfAnotherVolume) {
    EXPECT_EQ(prefetch(file, otherVolume, noLimit), 12U);
}

TEST_F(Prefetching, ReadsNoMoreThanAllowed) {
    EXPECT_EQ(prefetch(file, otherVolume, 5), 5U);
    EXPECT_EQ(prefetch(file, otherVolume, 0), 0U);
}

TEST_F(Prefetching, LeavesAFileOfTheSameVolumeToTheCopy) {
    EXPECT_EQ(prefetch(file, folder.createFolder("card"), noLimit), 0U);
}

TEST_F(Prefetching, PassesOverWhatCannotBeRead) {
    const auto pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(prefetch(pipe, otherVolume, noLimit), 0U);
    EXPECT_EQ(prefetch(folder / "missing.wav", otherVolume, noLimit), 0U);
    EXPECT_EQ(prefetch(folder.createFolder("a folder"), otherVolume, noLimit), 0U);
    EXPECT_EQ(prefetch(folder.write("empty.wav", ""), otherVolume, noLimit), 0U);
    EXPECT_EQ(prefetch(file, folder / "missing", noLimit), 0U);
}

} // namespace
} // namespace torvo::test
