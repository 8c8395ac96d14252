#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace torvo::bench {

double median(std::vector<double> values);

/// What the program and the work it is compared with took.
struct Medians {
    double ours = 0;
    double theirs = 0;
};

/// Takes both in turn, ours, theirs, ours, theirs, so that a change of the machine's mood meets
/// both, after one of each that does not count: it fills the caches.
Medians interleaved(std::size_t runs, const std::function<double()>& ours,
                    const std::function<double()>& theirs);

enum class Bar { atMost, atLeast };

/// One line of the report.
struct Row {
    std::string work;
    std::string ours;       ///< with its unit
    std::string comparedTo; ///< what, and its figure with its unit
    double figure = 0;      ///< a ratio, or megabytes
    std::string unit;       ///< of the figure, behind it
    Bar direction = Bar::atMost;
    double bar = 0;

    bool holds() const { return direction == Bar::atMost ? figure <= bar : figure >= bar; }
};

/// A table in Markdown.
std::string table(const std::vector<Row>& rows);

/// "12.3 ms" or "4.56 s".
std::string shownSeconds(double seconds);

} // namespace torvo::bench
