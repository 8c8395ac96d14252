#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace torvo::bench {

/// What is left of a program that has ended well.
struct FinishedProcess {
    std::string output;           ///< what it wrote to standard output
    double seconds = 0;           ///< from start to end
    std::uint64_t peakMemory = 0; ///< bytes resident at most
};

/// Runs a program (searched in PATH) to its end. Throws when it cannot be started or fails.
///
/// The peak never reads lower than this process's own: the kernel counts the moment before the new
/// program takes over. So this program keeps itself small and leaves the work to its children.
FinishedProcess runProcess(const std::vector<std::string>& arguments);

/// Does work in a copy of this process, so that the memory it takes is not counted against what is
/// measured later. Throws when it fails there.
void runForked(const std::function<void()>& work);

} // namespace torvo::bench
