#include "ArrivalGate.h"
#include "Platform/IOThreadPool.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <vector>

namespace torvo::test {
namespace {

constexpr auto never = std::numeric_limits<std::size_t>::max();

struct Failure : std::runtime_error {
    Failure() : std::runtime_error("failed") {}
};

TEST(IOThreadPool, runsMoreWaitingTasksAtOnceThanThereAreCores) {
    const auto limit = IOThreadPool::defaultThreadLimit();
    ASSERT_GE(limit, 16U);
    ASSERT_GE(limit, std::thread::hardware_concurrency());
    ArrivalGate gate(limit);
    std::atomic<std::size_t> passed = 0;
    IOThreadPool pool;
    for (std::size_t i = 0; i < limit; ++i)
        pool.run([&] { passed += gate.pass() ? 1U : 0U; });
    pool.wait();
    EXPECT_EQ(passed, limit);
}

TEST(IOThreadPool, neverRunsMoreTasksAtOnceThanTheLimit) {
    constexpr std::size_t limit = 3;
    ArrivalGate gate(limit);
    std::mutex mutex;
    std::size_t running = 0;
    std::size_t maxRunning = 0;
    IOThreadPool pool(limit);
    for (std::size_t i = 0; i < 300; ++i) {
        pool.run([&] {
            {
                const std::scoped_lock lock(mutex);
                maxRunning = std::max(maxRunning, ++running);
            }
            gate.pass();
            const std::scoped_lock lock(mutex);
            --running;
        });
    }
    pool.wait();
    EXPECT_EQ(maxRunning, limit);
}

TEST(IOThreadPool, startsTasksInTheOrderInWhichTheyWereQueued) {
    std::vector<int> expected(300);
    std::iota(expected.begin(), expected.end(), 0);
    for (const std::size_t threads : {0U, 1U}) {
        std::vector<int> order;
        IOThreadPool pool(threads);
        for (const int i : expected)
            pool.run([&order, i] { order.push_back(i); });
        pool.wait();
        EXPECT_EQ(order, expected) << threads;
    }
}

TEST(IOThreadPool, runsTasksOnTheCallingThreadWhenThousandsAreQueued) {
    for (const std::size_t threads : {0U, 1U}) {
        constexpr std::size_t count = 20'000;
        ArrivalGate gate(never);
        std::atomic<std::size_t> finished = 0;
        std::size_t maxUnfinished = 0;
        IOThreadPool pool(threads);
        if (threads > 0) {
            pool.run([&] { gate.pass(); });
            pool.runFirst([] {}); // starts the thread
            ASSERT_TRUE(gate.waitForArrivals(1));
        }
        for (std::size_t queued = 1; queued <= count; ++queued) {
            pool.run([&] { ++finished; });
            maxUnfinished = std::max(maxUnfinished, queued - finished);
        }
        gate.open();
        pool.wait();
        EXPECT_EQ(finished, count) << threads;
        EXPECT_GT(maxUnfinished, 1000U) << threads;
        EXPECT_LT(maxUnfinished, 10'000U) << threads;
    }
}

TEST(IOThreadPool, canBeUsedAgainAfterWaiting) {
    std::atomic<int> count = 0;
    IOThreadPool pool;
    for (int round = 1; round <= 3; ++round) {
        for (int i = 0; i < 100; ++i)
            pool.run([&] { ++count; });
        pool.wait();
        EXPECT_EQ(count, 100 * round);
    }
}

TEST(IOThreadPool, rethrowsTheExceptionOfATaskAndDiscardsTheTasksAfterIt) {
    for (const std::size_t threads : {0U, 1U}) {
        std::vector<int> order;
        IOThreadPool pool(threads);
        for (int i = 0; i < 300; ++i) {
            pool.run([&order, i] {
                order.push_back(i);
                if (i == 2)
                    throw Failure();
            });
        }
        EXPECT_TRUE(thrown<Failure>([&] { pool.wait(); })) << threads;
        EXPECT_THAT(order, testing::ElementsAre(0, 1, 2)) << threads;
    }
}

TEST(IOThreadPool, rethrowsAnExceptionThatOneOfManyThreadsHasThrown) {
    const auto limit = IOThreadPool::defaultThreadLimit();
    ArrivalGate gate(limit);
    std::atomic<std::size_t> started = 0;
    std::atomic<std::size_t> ended = 0;
    IOThreadPool pool;
    for (std::size_t i = 0; i < limit; ++i) {
        pool.run([&, i] {
            ++started;
            gate.pass();
            ++ended;
            if (i == 5)
                throw Failure();
        });
    }
    EXPECT_TRUE(thrown<Failure>([&] { pool.wait(); }));
    EXPECT_EQ(started, limit);
    EXPECT_EQ(ended, limit);
}

// The discarded task opens the gate, so the running one can end only after the discarding.
TEST(IOThreadPool, discardsQueuedTasksWhenItIsDestroyed) {
    ArrivalGate gate(never);
    std::atomic<bool> hasEnded = false;
    std::atomic<bool> hasRunDiscarded = false;
    {
        IOThreadPool pool(1);
        pool.run([&] { hasEnded = gate.pass(); });
        pool.runFirst([] {}); // starts the thread
        ASSERT_TRUE(gate.waitForArrivals(1));
        pool.run([&, opener = std::shared_ptr<void>(nullptr, [&](void*) { gate.open(); })] {
            hasRunDiscarded = true;
        });
    }
    EXPECT_TRUE(hasEnded);
    EXPECT_FALSE(hasRunDiscarded);
}

TEST(IOThreadPool, startsJobsBeforeQueuedTasks) {
    ArrivalGate gate(never);
    std::vector<int> order;
    IOThreadPool pool(1);
    for (int i = 0; i < 100; ++i)
        pool.run([&order, &gate, i] {
            if (i == 0)
                gate.pass();
            order.push_back(i);
        });
    ASSERT_TRUE(gate.waitForArrivals(1)); // the first task is running
    pool.runFirst([&order] { order.push_back(1000); });
    gate.open();
    pool.wait();
    const auto job = std::ranges::find(order, 1000);
    // A thread takes a few tasks at a time.
    EXPECT_LT(job - order.begin(), 16);
    EXPECT_EQ(order.size(), 101U);
}

TEST(IOThreadPool, runsAJobOnTheCallingThreadIfItHasNotStarted) {
    IOThreadPool pool(0);
    std::thread::id thread;
    const auto job = pool.runFirst([&] { thread = std::this_thread::get_id(); });
    EXPECT_EQ(thread, std::thread::id());
    pool.wait(*job);
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(IOThreadPool, rethrowsTheExceptionOfAJobToTheOneThatWaitsForIt) {
    for (const std::size_t threads : {0U, 1U}) {
        IOThreadPool pool(threads);
        const auto failing = pool.runFirst([] { throw Failure(); });
        int count = 0;
        for (int i = 0; i < 100; ++i)
            pool.run([&] { ++count; });
        pool.wait();
        EXPECT_EQ(count, 100);
        EXPECT_TRUE(thrown<Failure>([&] { pool.wait(*failing); })) << threads;
    }
}

} // namespace
} // namespace torvo::test
