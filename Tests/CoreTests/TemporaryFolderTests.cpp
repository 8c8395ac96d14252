#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

TEST(TemporaryFolderTests, removesLockedFoldersAndKeepsLinkTargets) {
    const TemporaryFolder outside;
    const auto kept = outside.write("Kept/a.wav", "audio");
    fs::path path;
    {
        const TemporaryFolder folder;
        path = folder.path();
        folder.write("Locked/inside/a.wav", "audio");
        fs::create_directory_symlink(outside / "Kept", folder / "Locked/link");
        fs::permissions(folder / "Locked/inside", fs::perms::none);
        fs::permissions(folder / "Locked", fs::perms::none);
    }
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(textOf(kept), "audio");
}

TEST(TemporaryFolderTests, removesTreesDeeperThanThePathAndOpenFileLimits) {
    fs::path path;
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    {
        const TemporaryFolder folder;
        path = folder.path();
        int current = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        const std::string name(200, 'd'); // 100 of them are longer than any path
        for (int depth = 0; depth < 100; ++depth) {
            ASSERT_EQ(::mkdirat(current, name.c_str(), 0700), 0);
            const int next = ::openat(current, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            ASSERT_GE(next, 0);
            ::close(current);
            current = next;
        }
        ::close(current);
        const rlimit low{64, limit.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
    }
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_FALSE(fs::exists(path));
}

} // namespace
} // namespace torvo::test
