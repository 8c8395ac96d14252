// Fails every file operation of a scan, a run, a document save and a stamp, first alone and then
// together with all later ones: no partial file under a final name, no false success, no damaged
// source, and a retry gives the result of an undisturbed run.

#include "FaultyFileManager.h"
#include "Models/UserFacingDescription.h"
#include "SmallLibrary.h"
#include "TreeSnapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::AnyOf;
using ::testing::AnyOfArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Matcher;
using ::testing::Not;

constexpr std::array errorNumbers{EIO, ENOSPC, EACCES, EROFS, EDQUOT, ENAMETOOLONG};
constexpr std::int64_t bankCount = 1;
constexpr std::uint64_t seed = 20260301;

/// The result of one attempt: no error, or the message for the user.
using Failure = std::optional<std::string>;

Failure attempt(const std::function<void()>& job) {
    try {
        job();
        return std::nullopt;
    } catch (const std::exception& error) {
        return userFacingDescription(error);
    }
}

using Job = std::function<void(const CoreServices&)>;
using Judge = std::function<void(const FaultPlan&, const Failure&)>;

/// Runs the job with a fault at its first operation, its second and so on until it succeeds.
/// Returns the number of faults injected.
std::uint64_t sweep(int errorNumber, FaultPlan::Extent extent, const Job& job, const Judge& judge) {
    std::uint64_t struck = 0;
    for (std::uint64_t n = 1;; ++n) {
        const auto plan = std::make_shared<FaultPlan>(n, errorNumber, extent);
        const CoreServices services(std::make_shared<FaultyFileManager>(systemFileManager(), plan));
        const auto failure = attempt([&] { job(services); });
        const auto faults = plan->faults();
        if (faults.empty()) {
            EXPECT_FALSE(failure) << *failure;
            return struck;
        }
        ++struck;
        SCOPED_TRACE("fault " + std::to_string(n) + ": " + faults.front().errorDescription());
        judge(*plan, failure);
        if (::testing::Test::HasFailure())
            return struck; // one example is enough
    }
}

std::uint64_t sweepAll(const Job& job, const Judge& judge) {
    std::uint64_t struck = 0;
    for (const int errorNumber : errorNumbers) {
        for (const auto extent : {FaultPlan::Extent::once, FaultPlan::Extent::forGood}) {
            struck += sweep(errorNumber, extent, job, judge);
            if (::testing::Test::HasFailure())
                return struck;
        }
    }
    return struck;
}

void reportCount(const char* what, std::uint64_t struck) {
    ::testing::Test::RecordProperty(what, std::to_string(struck));
    std::printf("[ points   ] %s: %llu\n", what, static_cast<unsigned long long>(struck));
}

/// Backdates the temporary files below a folder by two days: younger ones may be in use and are
/// kept.
void ageTemporaries(const fs::path& folder) {
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().filename().string().starts_with(".torvo-"))
            fs::last_write_time(entry, entry.last_write_time() - std::chrono::hours(48));
    }
}

/// The file that the user knows, not the hidden temporary file next to it.
std::string knownPath(const FileError& fault) {
    const auto name = fault.path().filename().string();
    return name.starts_with(".torvo-") ? fault.path().parent_path().string()
                                       : fault.path().string();
}

/// Whether the message names the failed file and the system's reason; conversions have a fixed text
/// and give the reason as a number.
void expectNamesFileAndCause(const FaultPlan& plan, const std::string& message) {
    EXPECT_THAT(message, Not(HasSubstr(".torvo-")));
    std::vector<Matcher<std::string>> expected;
    for (const auto& fault : plan.faults()) {
        const auto name = fault.path().filename().string();
        expected.push_back(AllOf(HasSubstr(knownPath(fault)), HasSubstr(fault.code().message())));
        for (const std::string& start :
             {"Unable to open source audio file " + name + ".",
              "Unable to create destination WAV file " + name + ".",
              std::string("Unable to configure source audio conversion."),
              std::string("Unable to configure destination audio conversion."),
              std::string("Unable to read source audio data."),
              std::string("Unable to write converted audio data.")}) {
            expected.emplace_back(start + " (OSStatus -" + std::to_string(plan.errorNumber()) +
                                  ")");
        }
    }
    EXPECT_THAT(message, AnyOfArray(expected));
}

/// A library, and the document and tree of an undisturbed run.
class FaultSweepTests : public ::testing::Test {
protected:
    void SetUp() override {
        source_ = writeSmallLibrary(folder_);
        out_ = folder_.createFolder("out");
        document_ = services_.run(source_, out_, bankCount, seed);
        sourceBefore_ = snapshotOf(source_);
        reference_ = snapshotOf(deviceFolder(), Times::doNotCount);
    }

    fs::path deviceFolder() const { return out_ / "Kit" / "QZT508"; }
    TreeSnapshot deviceTree() const { return snapshotOf(deviceFolder(), Times::doNotCount); }

    void expectSourceUntouched() const {
        EXPECT_THAT(differences(sourceBefore_, snapshotOf(source_)), IsEmpty());
    }

    TemporaryFolder folder_;
    /// Without faults and without waiting for the medium.
    CoreServices services_{
        std::make_shared<FaultyFileManager>(systemFileManager(), std::make_shared<FaultPlan>())};
    fs::path source_;
    fs::path out_;
    BankMappingDocument document_;
    TreeSnapshot sourceBefore_;
    TreeSnapshot reference_;
};

TEST_F(FaultSweepTests, aRunNeverReportsFalseSuccess) {
    const auto struck =
        sweepAll([&](const CoreServices& services) { services.exportDocument(document_, out_); },
                 [&](const FaultPlan& plan, const Failure& failure) {
                     expectSourceUntouched();
                     if (failure)
                         expectNamesFileAndCause(plan, *failure);
                     else
                         EXPECT_THAT(differences(reference_, deviceTree()), IsEmpty());
                     services_.exportDocument(document_, out_);
                     EXPECT_THAT(differences(reference_, deviceTree()), IsEmpty())
                         << "after a rerun";
                 });
    reportCount("run", struck);
    EXPECT_GT(struck, 2000U);
}

TEST_F(FaultSweepTests, aStampLeavesNoPartialFile) {
    const TorvoMetadataOptions options(12, TorvoPlaybackRate::rate22, TorvoFilterType::lowPass,
                                       true, {1, 5});
    std::int64_t stampedCount = 0;
    const auto stamp = [&](const CoreServices& services) {
        stampedCount = services.metadataWriter().apply(options, FileURL::directory(deviceFolder()));
    };
    const auto keptBeside = folder_ / "kept";
    fs::copy(deviceFolder(), keptBeside, fs::copy_options::recursive);
    stamp(services_);
    const auto stamped = deviceTree();
    ASSERT_NE(stamped, reference_);

    const auto reset = [&] {
        fs::remove_all(deviceFolder());
        fs::copy(keptBeside, deviceFolder(), fs::copy_options::recursive);
    };
    reset();
    const auto struck = sweepAll(stamp, [&](const FaultPlan& plan, const Failure& failure) {
        const auto now = deviceTree();
        for (const auto& [path, item] : now) {
            const auto name = fs::path(path).filename().string();
            if (reference_.contains(path))
                EXPECT_TRUE(item == reference_.at(path) || item == stamped.at(path)) << path;
            else // the card was removed during this file
                EXPECT_TRUE(name.starts_with('.') && name.ends_with(".tmp")) << path;
        }
        // Not always the first fault: looking for the folder to lock may fail before.
        const bool couldNotBegin = std::ranges::any_of(plan.faults(), [&](const FileError& fault) {
            return fault.operation() == FileOperation::list && fault.path() == deviceFolder();
        });
        if (failure)
            expectNamesFileAndCause(plan, *failure);
        else if (couldNotBegin) // intended: an unreadable root counts as empty
            EXPECT_TRUE(stampedCount == 0 || now == stamped);
        else
            EXPECT_THAT(differences(stamped, now), IsEmpty());
        ageTemporaries(deviceFolder());
        stamp(services_);
        EXPECT_THAT(differences(stamped, deviceTree()), IsEmpty()) << "after a rerun";
        reset();
    });
    reportCount("stamp", struck);
    EXPECT_GT(struck, 1000U);
}

TEST_F(FaultSweepTests, aSaveLeavesNoPartialDocument) {
    const auto folder = folder_.createFolder("documents");
    const auto path = folder / "Kit001.json";
    const auto save = [&](const CoreServices& services) {
        services.store().exportDocument(document_, FileURL(path));
    };
    save(services_);
    const auto newText = textOf(path);
    const std::string oldText = "an older document";
    for (const bool hadOld : {true, false}) {
        const auto reset = [&] {
            fs::remove(path);
            if (hadOld)
                folder_.write("documents/Kit001.json", oldText);
        };
        reset();
        const auto struck = sweepAll(save, [&](const FaultPlan& plan, const Failure& failure) {
            if (failure)
                expectNamesFileAndCause(plan, *failure);
            else // only the search for leftovers may fail without failing the save
                EXPECT_EQ(textOf(path), newText);
            if (fs::exists(path))
                EXPECT_THAT(textOf(path), AnyOf(oldText, newText));
            else
                EXPECT_FALSE(hadOld);
            for (const auto& entry : fs::directory_iterator(folder))
                EXPECT_TRUE(entry.path() == path ||
                            entry.path().filename().string().starts_with(".torvo-"))
                    << entry.path();
            ageTemporaries(folder);
            save(services_);
            EXPECT_EQ(textOf(path), newText);
            EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1)
                << "a rerun leaves nothing beside the document";
            reset();
        });
        reportCount(hadOld ? "document over an old one" : "new document", struck);
        EXPECT_GT(struck, 50U);
    }
}

TEST_F(FaultSweepTests, aLoadNeverReturnsAPartialDocument) {
    const auto path = folder_ / "Kit001.json";
    services_.store().exportDocument(document_, FileURL(path));
    const auto whole = services_.store().importDocument(FileURL(path));
    std::optional<BankMappingDocument> loaded;
    const auto struck = sweepAll(
        [&](const CoreServices& services) {
            loaded.reset();
            loaded = services.store().importDocument(FileURL(path));
        },
        [&](const FaultPlan& plan, const Failure& failure) {
            ASSERT_TRUE(failure);
            EXPECT_FALSE(loaded);
            expectNamesFileAndCause(plan, *failure);
        });
    reportCount("load", struck);
    EXPECT_EQ(loaded, whole);
}

/// Every sample of the report, by path.
std::set<std::string> samplesOf(const ScanReport& report) {
    std::set<std::string> paths;
    for (const auto role : allChannelRoles) {
        for (const auto& sample : report.buckets.samples(role))
            paths.insert(sample.sourceURL.path().string());
    }
    return paths;
}

TEST_F(FaultSweepTests, aScanReportsUnreadableFilesAndAddsNone) {
    const auto whole = services_.scan(source_);
    const auto wholeSamples = samplesOf(whole);
    std::optional<ScanReport> report;
    const auto struck = sweepAll(
        [&](const CoreServices& services) {
            report.reset();
            report = services.scan(source_);
        },
        [&](const FaultPlan& plan, const Failure& failure) {
            expectSourceUntouched();
            if (failure) {
                if (*failure != "Unable to read " + source_.string() + ".")
                    expectNamesFileAndCause(plan, *failure);
                return;
            }
            // Unreadable files are listed as ignored; unreadable folders are skipped.
            const auto samples = samplesOf(*report);
            EXPECT_TRUE(std::ranges::includes(wholeSamples, samples));
            const auto faults = plan.faults();
            for (const auto& missing : wholeSamples) {
                const bool isInSkippedFolder = std::ranges::any_of(faults, [&](const auto& fault) {
                    return fault.operation() == FileOperation::list &&
                           missing.starts_with(fault.path().string() + "/");
                });
                if (samples.contains(missing) || isInSkippedFolder)
                    continue;
                const auto shown = missing.substr(source_.string().size() + 1);
                EXPECT_THAT(report->ignoredFiles,
                            ::testing::Contains(IgnoredItem{shown, "Unsupported audio file"}));
            }
        });
    reportCount("scan", struck);
    EXPECT_EQ(report, whole);
    EXPECT_GT(struck, 300U);
}

} // namespace
} // namespace torvo::test
