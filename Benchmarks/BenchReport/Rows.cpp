#include "Rows.h"

#include "BankMappingStore.h"
#include "Baselines.h"
#include "ChildProcess.h"
#include "Platform/SystemFileManager.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

namespace torvo::bench {

namespace fs = std::filesystem;

namespace {

constexpr double bytesPerMegabyte = 1e6;

std::size_t allCores() {
    return std::max(1U, std::thread::hardware_concurrency());
}

Row timeRow(std::string work, std::string floor, const Medians& medians, double bar) {
    return {.work = std::move(work),
            .ours = shownSeconds(medians.ours),
            .comparedTo = std::move(floor) + ": " + shownSeconds(medians.theirs),
            .figure = medians.ours / medians.theirs,
            .unit = " ×",
            .direction = Bar::atMost,
            .bar = bar};
}

Row memoryRow(std::string work, std::uint64_t bytes, double bar) {
    const double megabytes = static_cast<double>(bytes) / bytesPerMegabyte;
    return {.work = std::move(work),
            .ours = "",
            .comparedTo = "",
            .figure = megabytes,
            .unit = " MB",
            .direction = Bar::atMost,
            .bar = bar};
}

Row fasterRow(std::string work, std::string slower, const Medians& medians, double bar) {
    return {.work = std::move(work),
            .ours = shownSeconds(medians.ours),
            .comparedTo = std::move(slower) + ": " + shownSeconds(medians.theirs),
            .figure = medians.theirs / medians.ours,
            .unit = " ×",
            .direction = Bar::atLeast,
            .bar = bar};
}

double secondsOf(const FinishedProcess& finished, const char* phase) {
    return nlohmann::json::parse(finished.output).at("seconds").at(phase).get<double>();
}

/// Makes an empty folder and flushes pending writes of earlier work.
fs::path emptied(const fs::path& folder) {
    fs::remove_all(folder);
    fs::create_directories(folder);
    systemFileManager()->flushVolume(folder);
    return folder;
}

FinishedProcess scanned(const Bench& bench, const fs::path& library, const char* mode) {
    return runProcess({bench.bankRun, "--scan", library, "--mode", mode});
}

/// Scanning a library, compared with opening its files and reading their first bytes.
Medians scanAndReadHeads(const Bench& bench, const fs::path& library, const char* mode) {
    const auto files = filesBelow(library);
    return interleaved(
        bench.sizes.runs, [&] { return secondsOf(scanned(bench, library, mode), "scan"); },
        [&] { return secondsToReadHeads(files, allCores()); });
}

constexpr auto headsFloor = "open, read 4 KiB";

std::vector<Row> scanWavs(const Bench& bench) {
    return {timeRow("scan of " + std::to_string(bench.sizes.wavFiles) + " WAV files", headsFloor,
                    scanAndReadHeads(bench, bench.inputs.wavLibrary(), "drums"), 2)};
}

std::string smallFileCount(const Bench& bench) {
    return "scan of " + std::to_string(bench.sizes.smallWavFiles) + " small files";
}

std::vector<Row> scanMany(const Bench& bench) {
    return {timeRow(smallFileCount(bench), headsFloor,
                    scanAndReadHeads(bench, bench.inputs.smallLibrary(), "drums"), 2.5)};
}

/// FFmpeg is loaded once by each process, so the baseline is a process, too.
std::vector<Row> scanMixed(const Bench& bench) {
    const auto library = bench.inputs.mixedLibrary();
    std::vector<std::string> bareWork{bench.bankRun.parent_path() / "first-frames"};
    for (const auto& file : filesBelow(library))
        bareWork.push_back(file);
    return {timeRow("scan of " + std::to_string(bench.sizes.mixedFiles) +
                        " files, half WAV, half FLAC, MP3, AIFF, Ogg and M4A",
                    "load FFmpeg, decode the first frame of each, or read 4 KiB of a WAV file",
                    interleaved(
                        bench.sizes.runs,
                        [&] { return secondsOf(scanned(bench, library, "drums"), "scan"); },
                        [&] { return runProcess(bareWork).seconds; }),
                    1.15)};
}

std::vector<Row> scanOther(const Bench& bench) {
    // Loops mode, so that every file is opened: no file is ignored because of its name.
    return {
        timeRow("scan of " + std::to_string(bench.sizes.otherFiles) + " files that are no audio",
                headsFloor, scanAndReadHeads(bench, bench.inputs.otherFiles(), "loops"), 3)};
}

/// Shows a folder through `slow-files`, with its option and value.
class SlowFolder {
public:
    SlowFolder(const Bench& bench, const fs::path& folder, const char* mountPoint,
               const char* option, const std::string& value)
        : mountPoint_(emptied(bench.folder / mountPoint)),
          server_(
              {bench.bankRun.parent_path() / "slow-files", folder, mountPoint_, option, value}) {
        while (volumeOf(mountPoint_) == volumeOf(bench.folder)) {
            if (!server_.isRunning())
                throw std::runtime_error("cannot mount a FUSE file system");
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    const fs::path& path() const { return mountPoint_; }

    static bool isPossible() {
        const bool hasFuse = fs::exists("/dev/fuse");
        if (!hasFuse)
            std::cerr << "not measured: this system has no FUSE" << std::endl;
        return hasFuse;
    }

private:
    static std::uint64_t volumeOf(const fs::path& folder) {
        return systemFileManager()->status(folder).value().identity.device;
    }

    fs::path mountPoint_;
    BackgroundProcess server_;
};

/// On a file server waiting decides, not computing, so the baseline, too, has as many requests in
/// flight as it takes, whatever the number of cores.
std::vector<Row> scanDistant(const Bench& bench) {
    if (!SlowFolder::isPossible())
        return {};
    constexpr auto milliseconds = "5";
    const SlowFolder distant(bench, bench.inputs.wavLibrary(), "distant", "--delay", milliseconds);
    const auto files = filesBelow(distant.path());
    constexpr std::size_t requestsInFlight = 16;
    return {
        timeRow("scan of " + std::to_string(bench.sizes.wavFiles) +
                    " WAV files, each request answered after " + milliseconds + " ms",
                std::string(headsFloor) + ", " + std::to_string(requestsInFlight) + " in flight",
                interleaved(
                    bench.sizes.runs,
                    [&] { return secondsOf(scanned(bench, distant.path(), "drums"), "scan"); },
                    [&] { return secondsToReadHeads(files, requestsInFlight); }),
                1.3)};
}

FinishedProcess exported(const Bench& bench, const fs::path& library, const char* mode,
                         const fs::path& out) {
    return runProcess({bench.bankRun, "--source", library, "--out", emptied(out), "--mode", mode,
                       "--seed", "42", "--banks", std::to_string(bench.sizes.banks)});
}

double secondsToExport(const Bench& bench, const fs::path& library, const char* mode,
                       const fs::path& out) {
    return secondsOf(exported(bench, library, mode, out), "export");
}

/// `cp -r`, then a flush, as at the end of an export.
double secondsToCopy(const Bench& bench, const fs::path& tree) {
    const auto copy = emptied(bench.folder / "copy");
    return runProcess({"sh", "-c", R"(cp -r "$0" "$1" && sync -f "$1")", tree, copy}).seconds;
}

std::string bankCount(const Bench& bench) {
    return std::to_string(bench.sizes.banks) + " banks";
}

std::string loopCount(const Bench& bench) {
    return std::to_string(bench.sizes.loops) + " loops of 48 and 96 kHz";
}

std::vector<Row> exportCompatible(const Bench& bench) {
    const auto library = bench.inputs.compatibleLibrary();
    const auto out = bench.folder / "out";
    return {
        timeRow(bankCount(bench) + ", every sample compatible", "`cp -r`, flush",
                interleaved(
                    bench.sizes.runs, [&] { return secondsToExport(bench, library, "drums", out); },
                    [&] { return secondsToCopy(bench, out); }),
                1.3)};
}

std::vector<Row> exportLoops(const Bench& bench) {
    const auto library = bench.inputs.loops();
    const auto loops = filesBelow(library);
    const auto out = bench.folder / "out";
    return {timeRow(
        bankCount(bench) + " of " + loopCount(bench),
        "bare conversion of each loop on all cores, `cp -r`, flush",
        interleaved(
            bench.sizes.runs, [&] { return secondsToExport(bench, library, "loops", out); },
            [&] { return secondsToConvert(loops, allCores()) + secondsToCopy(bench, out); }),
        1.25)};
}

/// Source and card are devices of their own, so the slower one decides how long a run takes. Both
/// need about as long here: every sample is read once and written twice.
std::vector<Row> exportBetweenDevices(const Bench& bench) {
    if (!SlowFolder::isPossible())
        return {};
    const auto sourceRate = "8"; // megabytes per second
    const auto cardRate = "16";
    const auto library = bench.inputs.compatibleLibrary();
    const auto source = [&] { return SlowFolder(bench, library, "source", "--rate", sourceRate); };
    const auto card = [&] {
        return SlowFolder(bench, emptied(bench.folder / "card contents"), "card", "--rate",
                          cardRate);
    };
    const auto mapping = bench.folder / "mapping.json";
    std::vector<fs::path> samples;
    {
        const auto mounted = source();
        const auto out = emptied(bench.folder / "out");
        runProcess({bench.bankRun, "--source", mounted.path(), "--out", out, "--seed", "42",
                    "--banks", std::to_string(bench.sizes.banks), "--json", mapping});
        const auto document = BankMappingStore().importDocument(FileURL(mapping));
        for (const auto& recipe : document.recipes) {
            for (const auto& [channel, sample] : recipe.channels)
                samples.push_back(sample.sourceURL.path());
        }
    }
    // Mounted anew for each run: the kernel has nothing of it in memory then.
    const auto secondsToRun = [&] {
        const auto from = source();
        const auto to = card();
        return secondsOf(runProcess({bench.bankRun, "--import", mapping, "--out", to.path()}),
                         "export");
    };
    const auto secondsOfSlowerDevice = [&] {
        const auto reading = [&] {
            const auto mounted = source();
            return secondsToRead(samples);
        }();
        const auto mounted = card();
        return std::max(reading,
                        runProcess({"cp", "-r", bench.folder / "out", mounted.path()}).seconds);
    };
    return {timeRow(bankCount(bench) + ", every sample compatible, read with " + sourceRate +
                        " MB/s, written with " + cardRate + " MB/s",
                    "the slower of reading the samples and `cp -r` of the banks",
                    interleaved(bench.sizes.runs, secondsToRun, secondsOfSlowerDevice), 1.15)};
}

/// Compares an export with the manual alternative, SoX on every loop of a folder.
Row exportBesideSox(const Bench& bench, const fs::path& library) {
    const auto convert = R"(find "$0" -name "*.wav" -print0 | xargs -0 -P 2 -I {} )"
                         R"(sh -c 'sox "$1" -c 1 -b 16 "$2/${1##*/}" rate -v 44100' sh {} "$1")";
    return fasterRow(
        bankCount(bench) + " of " + std::to_string(filesBelow(library).size()) +
            " loops of 48 and 96 kHz",
        "`sox … rate -v` of each loop, two processes",
        interleaved(
            bench.sizes.runs,
            [&] { return secondsToExport(bench, library, "loops", bench.folder / "out"); },
            [&] {
                return runProcess({"sh", "-c", convert, library, emptied(bench.folder / "copy")})
                    .seconds;
            }),
        2);
}

/// A folder whose loops occur eight times each in the banks, and one with as many loops as the
/// banks have channels.
std::vector<Row> exportAgainstSox(const Bench& bench) {
    return {exportBesideSox(bench, bench.inputs.loops()),
            exportBesideSox(bench, bench.inputs.manyLoops())};
}

std::string fullFolderCount(const Bench& bench) {
    return std::to_string(bench.sizes.fullFolders) + " folders of 1000 files";
}

std::vector<Row> memory(const Bench& bench) {
    const auto out = bench.folder / "out";
    return {memoryRow(bankCount(bench) + " of " + loopCount(bench) + ", memory",
                      exported(bench, bench.inputs.loops(), "loops", out).peakMemory, 256),
            memoryRow("the same of eight times as many loops, memory",
                      exported(bench, bench.inputs.manyLoops(), "loops", out).peakMemory, 256),
            memoryRow(smallFileCount(bench) + ", memory",
                      scanned(bench, bench.inputs.smallLibrary(), "drums").peakMemory, 150),
            // Last, since it has the largest output.
            memoryRow("scan of " + fullFolderCount(bench) + ", memory",
                      scanned(bench, bench.inputs.hugeLibrary(), "drums").peakMemory, 300)};
}

/// The generator shuffles all samples once. The memory is the maximum of scan, generation and
/// export.
std::vector<Row> generateFromHugeReport(const Bench& bench) {
    const auto library = bench.inputs.hugeLibrary();
    const auto out = bench.folder / "out";
    const auto samples = bench.sizes.fullFolders * 1000;
    std::vector<Row> rows;
    for (const auto* mode : {"drums", "loops", "stabs"}) {
        std::uint64_t peakMemory = 0;
        const auto medians = interleaved(
            bench.sizes.runs,
            [&] {
                const auto finished = exported(bench, library, mode, out);
                peakMemory = std::max(peakMemory, finished.peakMemory);
                return secondsOf(finished, "generate");
            },
            [&] { return secondsToShuffle(samples); });
        const auto work = bankCount(bench) + " from " + fullFolderCount(bench) + ", " + mode;
        rows.push_back(timeRow("generating " + work, "shuffle as many pointers", medians, 2));
        rows.push_back(memoryRow(work + ", memory", peakMemory, 300));
    }
    return rows;
}

std::vector<Row> stampFolder(const Bench& bench) {
    const auto out = bench.folder / "out";
    exported(bench, bench.inputs.compatibleLibrary(), "drums", out);
    std::vector<fs::path> files;
    for (const auto& file : filesBelow(out)) {
        if (file.extension() == ".wav")
            files.push_back(file);
    }
    std::ranges::sort(files);
    return {timeRow("stamping a folder of " + std::to_string(files.size()) + " files",
                    "read, write beside, flush each file, rename",
                    interleaved(
                        bench.sizes.runs,
                        [&] {
                            return secondsOf(runProcess({bench.bankRun, "--stamp", out}), "stamp");
                        },
                        [&] { return secondsToRewrite(files); }),
                    0.5)};
}

/// Writes to memory, so that the disk is no bottleneck; each loop is needed about once.
std::vector<Row> convertOnOneAndTwoCores(const Bench& bench) {
    const auto library = bench.inputs.loops();
    const auto out = fs::path("/dev/shm") / ("torvo-bench-" + bench.folder.filename().string());
    const auto secondsOn = [&](const char* cores) {
        const auto finished = runProcess(
            {"taskset", "-c", cores, bench.bankRun, "--source", library, "--out", emptied(out),
             "--mode", "loops", "--seed", "42", "--banks", std::to_string(bench.sizes.loops / 8)});
        return secondsOf(finished, "export");
    };
    const auto medians = interleaved(
        bench.sizes.runs, [&] { return secondsOn("0,1"); }, [&] { return secondsOn("0"); });
    fs::remove_all(out);
    return {fasterRow("conversion of " + loopCount(bench) + " on two cores", "on one core", medians,
                      1.8)};
}

} // namespace

const std::vector<Measurement>& allMeasurements() {
    static const std::vector<Measurement> measurements{
        // First, while this process is still small (see `runProcess`).
        {"generate", generateFromHugeReport},
        {"memory", memory},
        {"scan", scanWavs},
        {"scan-many", scanMany},
        {"scan-mixed", scanMixed},
        {"scan-other", scanOther},
        {"scan-distant", scanDistant},
        {"export-copy", exportCompatible},
        {"export-devices", exportBetweenDevices},
        {"export-loops", exportLoops},
        {"export-sox", exportAgainstSox},
        {"stamp", stampFolder},
        {"cores", convertOnOneAndTwoCores},
    };
    return measurements;
}

} // namespace torvo::bench
