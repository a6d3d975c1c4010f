// The program's command line, as a user meets it.

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "desktop/PrivateDesktop.h"

namespace lumiscan::testing {
namespace {

TEST(Program, TestsItselfWithoutADisplay) {
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  Process program({LUMISCAN_PROGRAM, "--selftest"});
  EXPECT_EQ(program.waitForEnd(), 0);
  EXPECT_EQ(program.standardOutput(),
            "PASS  OCR recognizes the app name\n"
            "PASS  OCR recognizes digits\n"
            "PASS  Line collapsing\n"
            "PASS  QR round-trip\n"
            "\n"
            "All self-tests passed.\n");
}

TEST(Program, SaysWhetherItMayCaptureTheScreen) {
  {
    PrivateDesktop desktop;
    Process program({LUMISCAN_PROGRAM, "--check-permission"});
    EXPECT_EQ(program.waitForEnd(), 0);
    EXPECT_EQ(program.standardOutput(), "Screen recording granted: true\n");
  }
  // The display has gone.
  Process program({LUMISCAN_PROGRAM, "--check-permission"});
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_EQ(program.standardOutput(), "Screen recording granted: false\n");
}

TEST(Program, StartsWhateverElseItsArgumentsSay) {
  const PrivateDesktop desktop;
  // The toolkit knows these, and would end the process.
  Process program({LUMISCAN_PROGRAM, "--platform", "offscreen", "-display", ":4999"});
  EXPECT_TRUE(waitUntil([&] { return desktop.shortcutIsTaken(); }));
  program.signal(SIGTERM);
  EXPECT_EQ(program.waitForEnd(), 0);
}

TEST(Program, EndsWithOneClearLineWhereNoThreadCanBeStarted) {
  const PrivateDesktop desktop;
  // Stacks of more than the address space.
  Process program({"prlimit", "--stack=150000000000000:", LUMISCAN_PROGRAM});
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_EQ(program.standardError(),
            "lumiscan: no thread can be started: processes or memory are limited too much\n");
}

TEST(Program, EndsWithOneClearLineWhereThereIsNoDisplay) {
  const std::pair<const char*, std::string> cases[] = {
      {nullptr, "lumiscan: no X display: DISPLAY is not set\n"},
      {":4999", "lumiscan: no X display answers at DISPLAY=:4999\n"},
  };
  for (const auto& [display, line] : cases) {
    SCOPED_TRACE(line);
    if (display)
      setenv("DISPLAY", display, 1);
    else
      unsetenv("DISPLAY");
    Process program({LUMISCAN_PROGRAM});
    EXPECT_EQ(program.waitForEnd(), 1);
    EXPECT_EQ(program.standardError(), line);
    EXPECT_EQ(program.standardOutput(), "");
  }
}

}  // namespace
}  // namespace lumiscan::testing
