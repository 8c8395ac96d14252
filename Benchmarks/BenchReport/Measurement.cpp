#include "Measurement.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace torvo::bench {

namespace {

std::string fixed(double value, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

std::string shortest(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

} // namespace

double median(std::vector<double> values) {
    std::ranges::sort(values);
    const auto middle = values.size() / 2;
    return values.size() % 2 == 1 ? values.at(middle)
                                  : (values.at(middle - 1) + values.at(middle)) / 2;
}

Medians interleaved(std::size_t runs, const std::function<double()>& ours,
                    const std::function<double()>& theirs) {
    ours();
    theirs();
    std::vector<double> oursTaken;
    std::vector<double> theirsTaken;
    for (std::size_t run = 0; run < runs; ++run) {
        oursTaken.push_back(ours());
        theirsTaken.push_back(theirs());
    }
    return {median(oursTaken), median(theirsTaken)};
}

std::string table(const std::vector<Row>& rows) {
    std::string text =
        "| work | ours | compared with | ratio | bar | |\n|---|---|---|---|---|---|\n";
    for (const auto& row : rows) {
        text += "| " + row.work + " | " + row.ours + " | " + row.comparedTo + " | " +
                fixed(row.figure, 2) + row.unit + " | " +
                (row.direction == Bar::atMost ? "at most " : "at least ") + shortest(row.bar) +
                row.unit + " | " + (row.holds() ? "OK" : "MISSED") + " |\n";
    }
    return text;
}

std::string shownSeconds(double seconds) {
    return seconds < 1 ? fixed(seconds * 1000, 1) + " ms" : fixed(seconds, 2) + " s";
}

} // namespace torvo::bench
