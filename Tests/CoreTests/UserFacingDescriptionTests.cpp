#include "Models/DecodingError.h"
#include "Models/GenerationError.h"
#include "Models/UserFacingDescription.h"
#include "Platform/FileError.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <stdexcept>

namespace torvo::test {
namespace {

TEST(UserFacingDescription, describesEveryFailureInOneSentence) {
    const DecodingError missing("recipes[3].channels.2.sourceURL", "missing");
    const std::vector<std::pair<std::exception_ptr, const char*>> rows{
        {std::make_exception_ptr(GenerationError::noRecipesGenerated()),
         "No banks could be generated."},
        // A message of the core is shown unchanged, even without a full stop.
        {std::make_exception_ptr(GenerationError::exportFailed("Missing channel 7 for bank 12")),
         "Missing channel 7 for bank 12"},
        {std::make_exception_ptr(FileError(FileOperation::write, "/card/info.txt", ENOSPC)),
         "Unable to write /card/info.txt: No space left on device."},
        {std::make_exception_ptr(missing),
         "The mapping document cannot be used: recipes[3].channels.2.sourceURL: missing."},
        {std::make_exception_ptr(missing.withDocumentName("Kit001.json")),
         "Kit001.json cannot be used: recipes[3].channels.2.sourceURL: missing."},
        {std::make_exception_ptr(DecodingError("", "not an object").withDocumentName("a.json")),
         "a.json cannot be used: not an object."},
        {std::make_exception_ptr(
             DecodingError("compatibility", "Invalid number of keys found, expected one.")),
         "The mapping document cannot be used: compatibility: Invalid number of keys found, "
         "expected one."},
        {std::make_exception_ptr(std::bad_alloc()), "There is not enough memory."},
        {std::make_exception_ptr(std::runtime_error("no rules")),
         "Something unexpected went wrong: no rules."},
        {std::make_exception_ptr(42), "Something unexpected went wrong."},
    };
    for (const auto& [error, expected] : rows)
        EXPECT_EQ(userFacingDescription(error), expected);
}

TEST(FileError, namesTheOperationThePathAndTheReason) {
    struct Row {
        FileOperation operation;
        const char* description;
    };
    const Row rows[] = {
        {FileOperation::read, "Unable to read /a b: Permission denied."},
        {FileOperation::write, "Unable to write /a b: Permission denied."},
        {FileOperation::list, "Unable to list the folder /a b: Permission denied."},
        {FileOperation::createFolder, "Unable to create the folder /a b: Permission denied."},
        {FileOperation::remove, "Unable to remove /a b: Permission denied."},
        {FileOperation::copy, "Unable to copy /a b: Permission denied."},
        {FileOperation::replace, "Unable to replace /a b: Permission denied."},
        {FileOperation::flush, "Unable to finish writing /a b: Permission denied."},
        {FileOperation::inspect, "Unable to look at /a b: Permission denied."},
        {FileOperation::lock, "Unable to lock /a b: Permission denied."},
    };
    for (const auto& row : rows) {
        const FileError error(row.operation, "/a b", EACCES);
        EXPECT_EQ(error.errorDescription(), row.description);
        EXPECT_STREQ(error.what(), row.description);
        EXPECT_EQ(error.operation(), row.operation);
        EXPECT_EQ(error.path(), "/a b");
        EXPECT_EQ(error.code(), std::errc::permission_denied);
    }
    EXPECT_EQ(FileError(FileOperation::read, "/a\xFF", ENOENT).errorDescription(),
              "Unable to read /a\uFFFD: No such file or directory.");
}

TEST(DecodingError, joinsKeyPathAndReason) {
    const DecodingError error("seed", "missing");
    EXPECT_STREQ(error.what(), "seed: missing");
    EXPECT_EQ(error.errorDescription(), "seed: missing");
    EXPECT_EQ(error.documentName(), "");
    const auto named = error.withDocumentName("x.json");
    EXPECT_EQ(named.documentName(), "x.json");
    EXPECT_EQ(named.keyPath(), "seed");
    EXPECT_EQ(named.reason(), "missing");
}

} // namespace
} // namespace torvo::test
