#pragma once

#include "Inputs.h"
#include "Measurement.h"

#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

namespace torvo::bench {

/// The parameters of every measurement.
struct Bench {
    std::filesystem::path bankRun; ///< the program that is measured
    std::filesystem::path folder;  ///< for inputs and results, on the disk that is measured
    Sizes sizes;
    Inputs inputs;
};

/// One measurement; some give two rows (time and memory).
struct Measurement {
    std::string_view name; ///< for the command line
    std::function<std::vector<Row>(const Bench&)> take;
};

const std::vector<Measurement>& allMeasurements();

} // namespace torvo::bench
