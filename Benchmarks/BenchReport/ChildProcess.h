#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace torvo::bench {

/// The result of a successful program.
struct FinishedProcess {
    std::string output;           ///< what it wrote to standard output
    double seconds = 0;           ///< from start to end
    std::uint64_t peakMemory = 0; ///< maximum resident bytes
};

/// Runs a program (searched in PATH) to its end. Throws when it cannot be started or fails.
///
/// The peak never reads lower than this process's own: the kernel counts the moment before the new
/// program takes over. So this program keeps itself small and leaves the work to its children.
FinishedProcess runProcess(const std::vector<std::string>& arguments);

/// A program that runs in the background until this object is destroyed, which sends it SIGTERM.
class BackgroundProcess {
public:
    /// Throws when the program cannot be started.
    explicit BackgroundProcess(const std::vector<std::string>& arguments);
    ~BackgroundProcess();
    BackgroundProcess(const BackgroundProcess&) = delete;
    BackgroundProcess& operator=(const BackgroundProcess&) = delete;

    bool isRunning();

private:
    int process_;
};

/// Runs a function in a forked child, so that its memory does not affect later measurements. Throws
/// when it fails.
void runForked(const std::function<void()>& work);

} // namespace torvo::bench
