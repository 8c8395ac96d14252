#include "Arguments.h"

#include "../CommandLine.h"

#include <array>
#include <charconv>
#include <getopt.h>
#include <limits>
#include <string_view>

namespace torvo::bankrun {

const char* const usage =
    R"(bank-run --source DIR --out DIR [--mode drums|loops|stabs] [--seed N] [--banks N]
         [--bits N] [--rate N] [--filter off|lp|bp|nt|hp] [--cv 1,3,8] [--json FILE]
bank-run --scan DIR [--mode M]         the scan report as JSON
bank-run --import FILE --out DIR [...] write a document's banks again
bank-run --stamp DIR [--bits ...]      stamp an existing device folder
)";

namespace {

using bench::UsageError;

template <typename Number>
Number number(std::string_view option, std::string_view text, Number least, Number greatest) {
    Number value{};
    const auto* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stopped != end || value < least || value > greatest) {
        throw UsageError("--" + std::string(option) + " takes a whole number from " +
                         std::to_string(least) + " to " + std::to_string(greatest) + ", not \"" +
                         std::string(text) + "\"");
    }
    return value;
}

template <typename Value>
Value known(std::string_view option, std::string_view text, const std::optional<Value>& found) {
    if (!found)
        throw UsageError("--" + std::string(option) + " does not know \"" + std::string(text) +
                         "\"");
    return *found;
}

std::optional<TorvoFilterType> filterNamed(std::string_view name) {
    constexpr std::array<std::string_view, 5> names{"off", "lp", "bp", "nt", "hp"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names.at(i) == name)
            return allTorvoFilterTypes.at(i);
    }
    return std::nullopt;
}

std::set<std::int64_t> channelList(std::string_view text) {
    std::set<std::int64_t> channels;
    for (const auto part : bench::partsOf(text))
        channels.insert(number<std::int64_t>("cv", part, 1, 8));
    return channels;
}

void take(Arguments& arguments, std::string_view option, const char* value) {
    auto& metadata = arguments.metadataOptions;
    if (option == "source")
        arguments.source = value;
    else if (option == "scan")
        arguments.scan = value;
    else if (option == "import")
        arguments.import = value;
    else if (option == "stamp")
        arguments.stamp = value;
    else if (option == "out")
        arguments.out = value;
    else if (option == "json")
        arguments.json = value;
    else if (option == "mode")
        arguments.mode = known(option, value, generationMode(value));
    else if (option == "seed")
        arguments.seed =
            number<std::uint64_t>(option, value, 0, std::numeric_limits<std::uint64_t>::max());
    else if (option == "banks")
        arguments.banks = number<std::int64_t>(option, value, 1, 9999);
    else if (option == "bits")
        metadata.bits = number<std::int64_t>(option, value, 1, 16);
    else if (option == "rate")
        metadata.rate =
            known(option, value, torvoPlaybackRate(number<std::int64_t>(option, value, 1, 99)));
    else if (option == "filter")
        metadata.filterType = known(option, value, filterNamed(value));
    else if (option == "cv") {
        metadata.cvAssignedChannels = channelList(value);
        metadata.cvAssignmentsEnabled = true;
    }
}

void requireSense(const Arguments& arguments) {
    const auto jobs = int{arguments.source.has_value()} + int{arguments.scan.has_value()} +
                      int{arguments.import.has_value()} + int{arguments.stamp.has_value()};
    if (jobs != 1)
        throw UsageError("one of --source, --scan, --import and --stamp is needed");
    if ((arguments.source || arguments.import) && !arguments.out)
        throw UsageError("--out is needed");
}

} // namespace

Arguments parseArguments(int argc, char** argv) {
    constexpr std::array<const char*, 13> names{"source", "scan",   "import", "stamp", "out",
                                                "json",   "mode",   "seed",   "banks", "bits",
                                                "rate",   "filter", "cv"};
    std::array<option, names.size() + 1> options{};
    for (std::size_t i = 0; i < names.size(); ++i)
        options.at(i) = {names.at(i), required_argument, nullptr, 0};

    Arguments arguments;
    opterr = 0;
    for (int index = 0;;) {
        const int found = getopt_long(argc, argv, "", options.data(), &index);
        if (found == -1)
            break;
        if (found != 0)
            throw UsageError("unknown or incomplete: " + std::string(argv[optind - 1]));
        take(arguments, names.at(static_cast<std::size_t>(index)), optarg);
    }
    if (optind < argc)
        throw UsageError("not understood: " + std::string(argv[optind]));
    requireSense(arguments);
    return arguments;
}

} // namespace torvo::bankrun
