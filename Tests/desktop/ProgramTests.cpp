// The program's command line, as a user meets it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <tuple>

#include "desktop/PrivateDesktop.h"

namespace lumiscan::testing {
namespace {

using ::testing::_;
using ::testing::FieldsAre;

/// How a run ends, and what it writes: to the standard output, and as errors.
std::tuple<std::optional<int>, std::string, std::string> run(const std::vector<std::string>& command) {
  Process program(command);
  const auto status = program.waitForEnd();
  return {status, program.standardOutput(), program.standardError()};
}

TEST(Program, TestsItselfWithoutADisplay) {
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  EXPECT_THAT(run({LUMISCAN_PROGRAM, "--selftest"}), FieldsAre(0,
                                                               "PASS  OCR recognizes the app name\n"
                                                               "PASS  OCR recognizes digits\n"
                                                               "PASS  Line collapsing\n"
                                                               "PASS  QR round-trip\n"
                                                               "\n"
                                                               "All self-tests passed.\n",
                                                               _));
}

TEST(Program, SaysWhetherItMayCaptureTheScreen) {
  auto desktop = std::make_unique<PrivateDesktop>();
  const std::vector<std::string> command{LUMISCAN_PROGRAM, "--check-permission"};
  EXPECT_THAT(run(command), FieldsAre(0, "Screen recording granted: true\n", _));
  desktop = nullptr;
  EXPECT_THAT(run(command), FieldsAre(1, "Screen recording granted: false\n", _));
}

TEST(Program, StartsWhateverElseItsArgumentsSay) {
  const PrivateDesktop desktop;
  // The toolkit knows these, and would end the process.
  Process program({LUMISCAN_PROGRAM, "--platform", "offscreen", "-display", ":4999"});
  EXPECT_TRUE(waitUntil([&] { return desktop.shortcutIsTaken(); }));
  program.signal(SIGTERM);
  EXPECT_EQ(program.waitForEnd(), 0);
}

TEST(Program, EndsWithOneClearLineWhereItCannotStart) {
  {
    const PrivateDesktop desktop;
    // Stacks of more than the address space.
    EXPECT_THAT(
        run({"prlimit", "--stack=150000000000000:", LUMISCAN_PROGRAM}),
        FieldsAre(1, "", "lumiscan: no thread can be started: processes or memory are limited too much\n"));
  }
  unsetenv("DISPLAY");
  EXPECT_THAT(run({LUMISCAN_PROGRAM}), FieldsAre(1, "", "lumiscan: no X display: DISPLAY is not set\n"));
  setenv("DISPLAY", ":4999", 1);
  EXPECT_THAT(run({LUMISCAN_PROGRAM}), FieldsAre(1, "", "lumiscan: no X display answers at DISPLAY=:4999\n"));
}

}  // namespace
}  // namespace lumiscan::testing
