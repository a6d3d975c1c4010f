#include <gtest/gtest.h>

#include "app/CommandLine.h"
#include "support/CapturedOutput.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

TEST(CommandLine, FlagsCountAnywhereButOnlyWhole) {
  struct Case {
    std::vector<std::string> arguments;
    LaunchMode mode;
  };
  const std::vector<Case> cases = {
      {{}, LaunchMode::interactive},
      {{"lumiscan"}, LaunchMode::interactive},
      {{"lumiscan", "--unknown", ""}, LaunchMode::interactive},
      {{"lumiscan", "--selftest"}, LaunchMode::selfTest},
      {{"--selftest"}, LaunchMode::selfTest},
      {{"lumiscan", "--check-permission", "--selftest"}, LaunchMode::selfTest},
      {{"lumiscan", "--selftest", "--check-permission"}, LaunchMode::selfTest},
      {{"lumiscan", "a", "--check-permission", "b"}, LaunchMode::permissionProbe},
      {{"lumiscan", "--Check-Permission"}, LaunchMode::interactive},
      {{"lumiscan", "--check-permission=1"}, LaunchMode::interactive},
      {{"lumiscan", "x--selftest", "--selftes", " --selftest"}, LaunchMode::interactive},
  };
  for (const Case& each : cases)
    EXPECT_EQ(launchMode(each.arguments), each.mode) << ::testing::PrintToString(each.arguments);
}

TEST(CommandLine, ProbeTellsTheAnswerWithoutPromptingOrAnApplication) {
  testing::SimulatedDesktop desktop;
  for (const bool granted : {true, false}) {
    desktop.displays().accessGranted = granted;
    const testing::CapturedOutput output;
    EXPECT_EQ(runPermissionProbe(), granted ? 0 : 1);
    EXPECT_EQ(output.text(),
              granted ? "Screen recording granted: true\n" : "Screen recording granted: false\n");
  }
  EXPECT_EQ(desktop.displays().accessRequests, 0);
  EXPECT_FALSE(desktop.applicationMade());
}

}  // namespace
}  // namespace lumiscan
