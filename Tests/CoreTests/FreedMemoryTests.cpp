#include "Platform/FreedMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

using namespace torvo;

namespace {

using Block = std::vector<std::uint8_t>;

/// 64 MB in blocks of 1 KB, of which only every hundredth is kept.
std::vector<Block> scatteredBlocks() {
    std::vector<Block> blocks(64 * std::size_t{1024}, Block(1024, std::uint8_t{7}));
    std::vector<Block> kept;
    for (std::size_t index = 0; index < blocks.size(); index += 100)
        kept.push_back(std::move(blocks[index]));
    return kept;
}

bool areIntact(const std::vector<Block>& blocks) {
    return std::ranges::all_of(blocks, [](const Block& block) {
        return std::ranges::count(block, std::uint8_t{7}) == std::ptrdiff_t{1024};
    });
}

} // namespace

TEST(FreedMemoryTest, whatIsInUseStays) {
    alwaysReturnLargeBlocks();
    const auto kept = scatteredBlocks();
    returnFreedMemory();
    EXPECT_TRUE(areIntact(kept));
}

// The allocators of the sanitizers have their own rules.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {

std::size_t residentMegabytes() {
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * 4096 / 1'000'000;
}

} // namespace

TEST(FreedMemoryTest, smallBlocksAreReturned) {
    const auto kept = scatteredBlocks();
    const auto before = residentMegabytes();
    returnFreedMemory();
    EXPECT_LT(residentMegabytes() + 32, before);
    EXPECT_TRUE(areIntact(kept));
}

TEST(FreedMemoryTest, largeBlocksAreReturnedAfterLargerOnesWereFreed) {
    alwaysReturnLargeBlocks();
    std::size_t blocksOfTheirOwn = 0;
    // In a thread, whose heap has no room left by other tests.
    std::thread([&] {
        std::make_unique<Block>(8'000'000).reset();
        const auto before = mallinfo2().hblks;
        const Block block(400'000);
        blocksOfTheirOwn = mallinfo2().hblks - before;
    }).join();
    EXPECT_EQ(blocksOfTheirOwn, 1U);
}

#endif
