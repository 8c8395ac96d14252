// Drives the core from the command line exactly as the application model does. A developer program:
// for benchmarks, profiles and end-to-end checks.

#include "../CommandLine.h"
#include "../Stopwatch.h"
#include "Arguments.h"
#include "AudioSupport.h"
#include "BankExporter.h"
#include "BankGenerator.h"
#include "BankMappingStore.h"
#include "Json.h"
#include "Platform/SystemFileManager.h"
#include "Platform/UnicodeText.h"
#include "SampleScanner.h"
#include "TorvoMetadata.h"

#include <functional>
#include <iostream>
#include <limits>
#include <random>

namespace torvo::bankrun {

namespace {

using bench::Stopwatch;
using nlohmann::json;

SampleScanner scanner() {
    return {std::make_shared<AVAudioFileInspector>(), AudioCompatibilityEvaluator{},
            systemFileManager()};
}

BankExporter exporter() {
    return {systemFileManager(), std::make_shared<AVAudioSamplePreparer>(),
            TorvoWAVMetadataWriter()};
}

std::uint64_t drawnSeed() {
    std::random_device device;
    return std::uniform_int_distribution<std::uint64_t>(
        1, std::numeric_limits<std::uint64_t>::max())(device);
}

json countsJson(const ScanReport& report) {
    auto counts = json::object();
    for (const auto& [role, count] : report.countsByRole())
        counts[std::string(rawValue(role))] = count;
    return counts;
}

json summaryJson(const ExportSummary& summary, std::uint64_t seed) {
    return {{"seed", seed},
            {"rootFolder", summary.rootFolder.shownPath()},
            {"banksWritten", summary.banksWritten},
            {"copiedFiles", summary.copiedFiles},
            {"convertedFiles", summary.convertedFiles},
            {"reusedBankCount", summary.reusedBankCount},
            {"poolFilesWritten", summary.poolFilesWritten}};
}

/// Writes the document's banks; the seconds of the export are added to `result`.
void exportDocument(const BankMappingDocument& document, const Arguments& arguments, json& result) {
    const auto job =
        exportJob(document, FileURL::directory(*arguments.out), arguments.metadataOptions);
    const Stopwatch watch;
    result.update(summaryJson(exporter().exportBanks(job), job.seed));
    result["seconds"]["export"] = watch.seconds();
}

json generate(const Arguments& arguments) {
    auto result = json::object();
    const Stopwatch scanWatch;
    const auto report = scanner().scan(FileURL::directory(*arguments.source), arguments.mode);
    result["seconds"]["scan"] = scanWatch.seconds();
    result["counts"] = countsJson(report);

    const BankMappingStore store;
    const Stopwatch generateWatch;
    const BankNameScheme naming(report.sourceFolder.lastPathComponent());
    const auto& chosen = generationTemplate(arguments.mode);
    const auto document = store.document(
        report.sourceFolder, arguments.mode, naming, chosen,
        BankGenerator().makeRecipes(report.buckets, arguments.mode, chosen, arguments.banks, naming,
                                    arguments.seed ? *arguments.seed : drawnSeed()));
    result["seconds"]["generate"] = generateWatch.seconds();

    exportDocument(document, arguments, result);
    if (arguments.json)
        store.exportDocument(document, FileURL(*arguments.json));
    return result;
}

json import(const Arguments& arguments) {
    auto result = json::object();
    const BankMappingStore store;
    const auto document = store.importDocument(FileURL(*arguments.import));
    exportDocument(document, arguments, result);
    if (arguments.json)
        store.exportDocument(document, FileURL(*arguments.json));
    return result;
}

json candidateJson(const SampleCandidate& candidate) {
    const auto* conversion = std::get_if<RequiresConversion>(&candidate.compatibility);
    return {{"path", candidate.sourceURL.shownPath()},
            {"displayName", candidate.displayName},
            {"reason", conversion == nullptr ? json() : json(conversion->reason)},
            {"format", candidate.formatDetails}};
}

/// One element per line, built when it is written: a report may have a hundred thousand.
template <typename Items, typename ToJson>
void printList(const Items& items, ToJson toJson) {
    const char* separator = "[";
    for (const auto& item : items) {
        std::cout << separator << "\n  " << json(toJson(item)).dump();
        separator = ",";
    }
    std::cout << (items.empty() ? "[]" : "\n]");
}

void scan(const Arguments& arguments) {
    const Stopwatch watch;
    const auto report = scanner().scan(FileURL::directory(*arguments.scan), arguments.mode);
    const double seconds = watch.seconds();

    std::cout << "{\n\"mode\": " << json(report.mode) << ",\n\"counts\": " << countsJson(report)
              << ",\n\"buckets\": {";
    const char* separator = "\n";
    for (const auto role : allChannelRoles) {
        std::cout << separator << json(rawValue(role)) << ": ";
        printList(report.buckets.samples(role), candidateJson);
        separator = ",\n";
    }
    std::cout << "\n},\n\"ignoredFiles\": ";
    printList(report.ignoredFiles, std::identity{});
    std::cout << ",\n\"ignoredFolders\": ";
    printList(report.ignoredFolders, std::identity{});
    std::cout << ",\n\"seconds\": " << json{{"scan", seconds}} << "\n}\n";
}

json stamp(const Arguments& arguments) {
    const Stopwatch watch;
    const auto stamped = TorvoWAVMetadataWriter().apply(arguments.metadataOptions,
                                                        FileURL::directory(*arguments.stamp));
    return {{"stamped", stamped}, {"seconds", {{"stamp", watch.seconds()}}}};
}

void print(const json& result) {
    std::cout << result.dump(2) << "\n";
}

void run(const Arguments& arguments) {
    if (arguments.scan)
        scan(arguments);
    else if (arguments.import)
        print(import(arguments));
    else if (arguments.stamp)
        print(stamp(arguments));
    else
        print(generate(arguments));
    std::cout.flush();
}

} // namespace

} // namespace torvo::bankrun

int main(int argc, char** argv) {
    try {
        torvo::bankrun::run(torvo::bankrun::parseArguments(argc, argv));
        return std::cout ? 0 : 1;
    } catch (const torvo::bench::UsageError& error) {
        std::cerr << error.what() << "\n" << torvo::bankrun::usage;
        return 2;
    } catch (const std::exception& error) {
        std::cerr << torvo::userFacingDescription(error) << std::endl;
        if (const auto file = torvo::failedFile(error))
            std::cerr << torvo::text::validUTF8(file->native()) << std::endl;
        return 1;
    }
}
