#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

namespace torvo::bench {

/// Calls `work` with each file on `threads` threads, which take `atOnce` files at a time. Rethrows
/// the first error.
template <typename Work>
void onThreads(std::span<const std::filesystem::path> files, std::size_t threads,
               std::size_t atOnce, Work work) {
    std::atomic<std::size_t> next = 0;
    std::exception_ptr failure;
    std::mutex failureMutex;
    const auto takeFiles = [&] {
        try {
            for (;;) {
                const auto first = next.fetch_add(atOnce);
                if (first >= files.size())
                    return;
                for (const auto& file :
                     files.subspan(first).first(std::min(atOnce, files.size() - first)))
                    work(file);
            }
        } catch (...) {
            const std::scoped_lock lock(failureMutex);
            if (!failure)
                failure = std::current_exception();
        }
    };
    {
        std::vector<std::jthread> workers;
        for (std::size_t i = 1; i < threads; ++i)
            workers.emplace_back(takeFiles);
        takeFiles();
    }
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace torvo::bench
