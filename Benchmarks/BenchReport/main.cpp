// Compares the program with minimal implementations of its work and prints a table with the
// medians, their ratio and the bar. Run it on an idle machine with an unused disk.

#include "../CommandLine.h"
#include "Rows.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <exception>
#include <getopt.h>
#include <iostream>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

namespace torvo::bench {

namespace {

namespace fs = std::filesystem;

constexpr auto usage = R"(bench-report [--quick] [--runs N] [--rows NAME,NAME...] [--work DIR]
  --quick   small inputs and few runs: shows that everything works, no more
  --runs    how often each measurement is taken
  --rows    only these measurements
  --work    keeps inputs and results in DIR; without it they go to a temporary folder
)";

struct Options {
    Sizes sizes = fullSizes;
    std::set<std::string, std::less<>> rows; ///< empty means all
    std::optional<fs::path> work;
};

std::size_t runCount(std::string_view text) {
    std::size_t count = 0;
    const auto* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, count);
    if (error != std::errc() || stopped != end || count == 0)
        throw UsageError("--runs takes a number of at least 1");
    return count;
}

std::set<std::string, std::less<>> rowNames(std::string_view text) {
    std::set<std::string, std::less<>> names;
    for (const auto name : partsOf(text)) {
        if (std::ranges::find(allMeasurements(), name, &Measurement::name) ==
            allMeasurements().end())
            throw UsageError("--rows does not know \"" + std::string(name) + "\"");
        names.emplace(name);
    }
    return names;
}

Options parsed(int argc, char** argv) {
    constexpr std::array<option, 5> known{{{"quick", no_argument, nullptr, 'q'},
                                           {"runs", required_argument, nullptr, 'n'},
                                           {"rows", required_argument, nullptr, 'r'},
                                           {"work", required_argument, nullptr, 'w'},
                                           {nullptr, 0, nullptr, 0}}};
    Options options;
    std::optional<std::size_t> runs;
    for (int found = 0; (found = getopt_long(argc, argv, "", known.data(), nullptr)) != -1;) {
        if (found == 'q')
            options.sizes = quickSizes;
        else if (found == 'n')
            runs = runCount(optarg);
        else if (found == 'r')
            options.rows = rowNames(optarg);
        else if (found == 'w')
            options.work = optarg;
        else
            throw UsageError("not understood");
    }
    if (optind < argc)
        throw UsageError("not understood: " + std::string(argv[optind]));
    if (runs)
        options.sizes.runs = *runs;
    return options;
}

/// A temporary folder that is removed at the end, unless the user has named one.
class WorkFolder {
public:
    explicit WorkFolder(const std::optional<fs::path>& kept) : isKept_(kept.has_value()) {
        if (kept) {
            fs::create_directories(*kept);
            path_ = fs::canonical(*kept);
            return;
        }
        auto pattern = (fs::temp_directory_path() / "torvo-bench-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("cannot make a temporary folder");
        path_ = pattern;
    }
    ~WorkFolder() {
        std::error_code ignored; // leftovers stay in the temporary folder
        if (!isKept_)
            fs::remove_all(path_, ignored);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const fs::path& path() const { return path_; }

private:
    bool isKept_;
    fs::path path_;
};

void report(const Options& options) {
    const WorkFolder work(options.work);
    const Bench bench{.bankRun = fs::read_symlink("/proc/self/exe").replace_filename("bank-run"),
                      .folder = work.path(),
                      .sizes = options.sizes,
                      .inputs = Inputs(work.path(), options.sizes)};
    std::vector<Row> rows;
    for (const auto& [name, take] : allMeasurements()) {
        if (!options.rows.empty() && !options.rows.contains(name))
            continue;
        std::cerr << name << std::endl;
        for (auto& row : take(bench))
            rows.push_back(std::move(row));
    }
    std::cout << "Medians of " << options.sizes.runs << " interleaved runs.\n\n"
              << table(rows) << std::flush;
}

} // namespace

} // namespace torvo::bench

int main(int argc, char** argv) {
    try {
        torvo::bench::report(torvo::bench::parsed(argc, argv));
        return std::cout ? 0 : 1;
    } catch (const torvo::bench::UsageError& error) {
        std::cerr << error.what() << "\n" << torvo::bench::usage;
        return 2;
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        return 1;
    }
}
