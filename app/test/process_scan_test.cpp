#include "app/process_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "test_support/fake_process.h"

namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;
using vgn_control::isProcessEntry;
using vgn_control::processesNamed;

TEST(ProcessScan, OnlyDigitsNameAProcess) {
  EXPECT_TRUE(isProcessEntry("1"));
  EXPECT_TRUE(isProcessEntry("0123456789"));
  EXPECT_FALSE(isProcessEntry("self"));
  EXPECT_FALSE(isProcessEntry("1a"));
  EXPECT_FALSE(isProcessEntry("-1"));
}

TEST(ProcessScan, AnEmptyNamePasses) { EXPECT_TRUE(isProcessEntry("")); }

TEST(ProcessScan, FindsEveryProcessOfTheName) {
  const test_support::fake_process_t first("runtime_engine");
  const test_support::fake_process_t second("runtime_engine");
  EXPECT_THAT(processesNamed("runtime_engine"),
              UnorderedElementsAre(QString::fromStdString(first.id()), QString::fromStdString(second.id())));
}

TEST(ProcessScan, FindsNothingOfANameThatNoProcessHas) { EXPECT_THAT(processesNamed("runtime_engine"), IsEmpty()); }

TEST(ProcessScan, ALongerNameWithTheSameBeginningDoesNotMatch) {
  const test_support::fake_process_t other("runtime_engine2");
  EXPECT_THAT(processesNamed("runtime_engine"), IsEmpty());
}

TEST(ProcessScan, BlanksAndLineBreaksAroundTheNameDoNotCount) {
  const test_support::fake_process_t process(" engine\n ");
  EXPECT_THAT(processesNamed("engine"), UnorderedElementsAre(QString::fromStdString(process.id())));
}

TEST(ProcessScan, AWantedNameBeyondFifteenCharactersFindsNothing) {
  const test_support::fake_process_t process("a_process_of_sixteen");
  EXPECT_THAT(processesNamed("a_process_of_sixteen"), IsEmpty());
  EXPECT_THAT(processesNamed("a_process_of_si"), UnorderedElementsAre(QString::fromStdString(process.id())));
}

void scanWithoutDescriptors() {
  const rlimit no_descriptors{0, 0};
  setrlimit(RLIMIT_NOFILE, &no_descriptors);
  processesNamed("runtime_engine");
}

TEST(ProcessScanDeathTest, WithoutProcTheProgramEnds) {
  EXPECT_DEATH(scanWithoutDescriptors(), "Failed to open /proc");
}

}  // namespace
