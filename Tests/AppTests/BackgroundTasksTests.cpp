#include "BackgroundTasks.h"
#include "Support/AppFixture.h"

#include <gmock/gmock.h>

#include <atomic>
#include <optional>
#include <sys/resource.h>
#include <vector>

namespace torvo::test {
namespace {

using app::BackgroundTasks;
using ::testing::ElementsAre;

TEST(BackgroundTasks, runsQueuedWorkInOrder) {
    BackgroundTasks tasks;
    std::vector<int> begun; // by one task at a time
    const auto gate = std::make_shared<Gate>();
    std::atomic<bool> firstEnded = false;
    tasks.startInTurn([&] {
        gate->pass();
        begun.push_back(1);
        firstEnded = true;
    });
    for (const int number : {2, 3}) {
        tasks.startInTurn([&begun, &firstEnded, number] {
            if (firstEnded)
                begun.push_back(number);
        });
    }
    gate->open();
    ASSERT_TRUE(waitUntil([&] { return !tasks.isBusy(); }));
    EXPECT_THAT(begun, ElementsAre(1, 2, 3));
}

TEST(BackgroundTasks, runsOtherWorkInParallel) {
    BackgroundTasks tasks;
    const auto gate = std::make_shared<Gate>();
    tasks.startInTurn([gate] { gate->pass(); });
    tasks.start([gate] { gate->open(); });
    EXPECT_TRUE(waitUntil([&] { return !tasks.isBusy(); }));
}

TEST(BackgroundTasks, discardsWorkThatHasNotStartedWhenDestroyed) {
    bool secondRan = false;
    {
        BackgroundTasks tasks;
        tasks.startInTurn([] {});
        tasks.startInTurn([&secondRan] { secondRan = true; });
    }
    EXPECT_FALSE(secondRan);
}

TEST(BackgroundTasks, runsJobsOnTheMainThreadInOrder) {
    BackgroundTasks tasks;
    std::vector<int> ran;
    std::vector<std::thread::id> threads;
    tasks.start([&] {
        for (const int number : {1, 2, 3}) {
            tasks.postToMainThread([&ran, &threads, number] {
                ran.push_back(number);
                threads.push_back(std::this_thread::get_id());
            });
        }
    });
    ASSERT_TRUE(waitUntil([&] { return !tasks.isBusy(); }));
    EXPECT_THAT(ran, ElementsAre(1, 2, 3));
    EXPECT_THAT(threads, testing::Each(std::this_thread::get_id()));
}

TEST(BackgroundTasks, lowersThePriorityOfItsThreads) {
    BackgroundTasks tasks;
    const int ours = getpriority(PRIO_PROCESS, 0);
    std::optional<int> theirs;
    std::optional<int> ofTheirThreads;
    tasks.start([&] {
        theirs = getpriority(PRIO_PROCESS, 0);
        std::thread([&] { ofTheirThreads = getpriority(PRIO_PROCESS, 0); }).join();
    });
    ASSERT_TRUE(waitUntil([&] { return !tasks.isBusy(); }));
    EXPECT_EQ(theirs, std::max(ours, 4));
    EXPECT_EQ(ofTheirThreads, theirs);
    EXPECT_EQ(getpriority(PRIO_PROCESS, 0), ours);
}

} // namespace
} // namespace torvo::test
