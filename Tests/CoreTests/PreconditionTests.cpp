#include "Platform/Precondition.h"

#include <gtest/gtest.h>

#include <csignal>

namespace torvo::test {
namespace {

TEST(PreconditionDeathTest, abortsWithAMessageWhenBroken) {
    EXPECT_EXIT(precondition(false, "a bank has eight channels"), testing::KilledBySignal(SIGABRT),
                "^Broken precondition: a bank has eight channels\n$");
}

TEST(Precondition, doesNothingWhenMet) {
    testing::internal::CaptureStderr();
    precondition(true, "never seen");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace torvo::test
