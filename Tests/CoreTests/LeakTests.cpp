// Many runs in one process: memory, open files and threads do not grow.

#include "FaultyFileManager.h"
#include "ProcessResources.h"
#include "SmallLibrary.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <random>
#include <string>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

/// Generates, imports and stamps in random order; about half of the operations get a fault.
class BusyUser {
public:
    BusyUser() : source_(writeSmallLibrary(folder_)), out_(folder_.createFolder("out")) {
        const CoreServices services(fileManager({}));
        document_ = services.run(source_, out_, 1, 1);
        services.store().exportDocument(document_, FileURL(folder_ / "Kit001.json"));
    }

    /// True when the operation succeeded.
    bool act() {
        FaultPlan::Extent extent =
            drawn(2) == 0 ? FaultPlan::Extent::once : FaultPlan::Extent::forGood;
        const std::uint64_t failAt = drawn(2) == 0 ? 0 : 1 + drawn(400);
        const CoreServices services(fileManager(std::make_shared<FaultPlan>(failAt, EIO, extent)));
        try {
            switch (drawn(3)) {
            case 0:
                services.run(source_, out_, 1, 1 + drawn(1000));
                break;
            case 1:
                services.exportDocument(
                    services.store().importDocument(FileURL(folder_ / "Kit001.json")), out_);
                break;
            default:
                services.metadataWriter().apply({}, FileURL::directory(out_ / "Kit" / "QZT508"));
                break;
            }
            return true;
        } catch (const std::exception&) {
            return false;
        }
    }

private:
    static std::shared_ptr<const FileManager> fileManager(std::shared_ptr<FaultPlan> plan) {
        return std::make_shared<FaultyFileManager>(
            systemFileManager(), plan ? std::move(plan) : std::make_shared<FaultPlan>());
    }

    std::uint64_t drawn(std::uint64_t below) {
        return std::uniform_int_distribution<std::uint64_t>(0, below - 1)(random_);
    }

    TemporaryFolder folder_;
    std::mt19937_64 random_{77};
    fs::path source_;
    fs::path out_;
    BankMappingDocument document_;
};

TEST(LeakTests, twoHundredRunsLeakNothing) {
    // The malloc caches of worker threads vary by more than a small leak.
    ASSERT_NE(std::getenv("GLIBC_TUNABLES"), nullptr) << "run this test with ctest";
    constexpr int warmUp = 40; // one-time allocations: tables, thread pools, library state
    constexpr int runs = 200;
    BusyUser user;
    int succeeded = 0;
    for (int i = 0; i < warmUp; ++i)
        user.act();
    const auto before = processResources();
    for (int i = 0; i < runs; ++i)
        succeeded += user.act() ? 1 : 0;
    const auto after = processResources();
    EXPECT_GT(succeeded, runs / 5);
    EXPECT_LT(succeeded, runs);
    EXPECT_EQ(after.openFiles, before.openFiles);
    EXPECT_LE(after.threads, before.threads);
    constexpr std::size_t leakInEachRun = 16; // bytes
    EXPECT_LT(after.heapBytes, before.heapBytes + runs * leakInEachRun)
        << before.heapBytes << " bytes before, " << after.heapBytes << " after";
}

} // namespace
} // namespace torvo::test
