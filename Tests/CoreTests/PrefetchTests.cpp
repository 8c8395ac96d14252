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
};

TEST_F(Prefetching, readsAFile) {
    EXPECT_EQ(prefetch(file, noLimit), 12U);
}

TEST_F(Prefetching, readsNoMoreThanAllowed) {
    EXPECT_EQ(prefetch(file, 5), 5U);
    EXPECT_EQ(prefetch(file, 0), 0U);
}

TEST_F(Prefetching, tellsVolumesApart) {
    EXPECT_TRUE(areOnTwoVolumes(file, "/proc"));
    EXPECT_FALSE(areOnTwoVolumes(file, folder.createFolder("card")));
    EXPECT_FALSE(areOnTwoVolumes(file, folder / "missing"));
    EXPECT_FALSE(areOnTwoVolumes(folder / "missing", file));
}

TEST_F(Prefetching, passesOverWhatCannotBeRead) {
    const auto pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(prefetch(pipe, noLimit), 0U);
    EXPECT_EQ(prefetch(folder / "missing.wav", noLimit), 0U);
    EXPECT_EQ(prefetch(folder.createFolder("a folder"), noLimit), 0U);
    EXPECT_EQ(prefetch(folder.write("empty.wav", ""), noLimit), 0U);
}

} // namespace
} // namespace torvo::test
