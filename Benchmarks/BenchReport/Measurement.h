#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace torvo::bench {

double median(std::vector<double> values);

/// The times of the program and of the baseline.
struct Medians {
    double ours = 0;
    double theirs = 0;
};

/// Measures both alternately, so that a change of the machine's load affects both, after one
/// warm-up run of each to fill the caches.
Medians interleaved(std::size_t runs, const std::function<double()>& ours,
                    const std::function<double()>& theirs);

enum class Bar { atMost, atLeast };

/// One row of the report.
struct Row {
    std::string work;
    std::string ours;       ///< with its unit
    std::string comparedTo; ///< the baseline, and its value with the unit
    double figure = 0;      ///< a ratio, or megabytes
    std::string unit;       ///< printed after the figure
    Bar direction = Bar::atMost;
    double bar = 0;

    bool holds() const { return direction == Bar::atMost ? figure <= bar : figure >= bar; }
};

/// Prints a Markdown table.
std::string table(const std::vector<Row>& rows);

/// "12.3 ms" or "4.56 s".
std::string shownSeconds(double seconds);

} // namespace torvo::bench
