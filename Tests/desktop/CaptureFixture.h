#pragma once

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "desktop/PrivateDesktop.h"

namespace lumiscan::testing {

/// What the page shows.
inline const std::string pageText =
    "The quick brown fox jumps over the lazy dog.\n"
    "Lumiscan copies whatever you can see:\n"
    "an error in a dialog, a name in a picture,\n"
    "the 24680 lines of a log from last night.";

/// The program itself on a private desktop, beside a page of text.
class CaptureTest : public ::testing::Test {
 protected:
  // Where the page's content lies on the screen, without the window's frame.
  static constexpr int left = 100, top = 100, right = 800, bottom = 300;

  void SetUp() override {
    std::ofstream(desktop_.home() / "page") << pageText << "\n";
    // A terminal that takes keys without showing them, and has no cursor to blink.
    page_ = Process::start({"xterm", "-class", "Page", "-fa", "DejaVu Sans Mono", "-fs", "14", "-geometry",
                            "60x8+90+70", "-bg", "white", "-fg", "black", "-e",
                            "stty -echo; printf '\\033[?25l'; cat ~/page; exec sleep 600"});
    ASSERT_TRUE(waitUntil([this] { return pageHasInk(); }));
    ASSERT_TRUE(waitUntil([this] { return desktop_.focusedWindow() == desktop_.windowsOfClass("Page")[0]; }));
    startProgram();
  }

  /// Ends the one that runs. `prefix` is a command that starts the one that follows it.
  void startProgram(const std::vector<std::string>& prefix = {}) {
    std::vector<std::string> command = prefix;
    command.push_back(LUMISCAN_PROGRAM);
    program_ = nullptr;
    program_ = Process::start(command);
    ASSERT_TRUE(waitUntil([this] { return desktop_.shortcutIsTaken(); }));
  }

  /// Whether the last line of the page shows.
  bool pageHasInk() const {
    const auto windows = desktop_.windowsOfClass("Page");
    if (windows.empty()) return false;
    const auto line = desktop_.pixels(left, 170, right - left, 30);
    return std::ranges::count_if(line, [](std::uint32_t pixel) { return (pixel & 0xFF) < 0x40; }) > 200;
  }

  void pressShortcut() { desktop_.pressKeys({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2}); }
  std::size_t overlays() const { return desktop_.windowsOfClass("Lumiscan").size(); }
  bool waitForOverlays(std::size_t count) {
    return waitUntil([&] { return overlays() == count; });
  }
  void dragOverThePage() { desktop_.drag(left - 8, top - 8, right, bottom); }
  void captureThePage() {
    pressShortcut();
    ASSERT_TRUE(waitForOverlays(1));
    dragOverThePage();
    ASSERT_TRUE(waitForOverlays(0));
  }
  bool waitForClipboard(const std::string& text) {
    return waitUntil([&] { return PrivateDesktop::clipboard() == text; });
  }

  PrivateDesktop desktop_;
  std::unique_ptr<Process> page_;
  std::unique_ptr<Process> program_;
};

}  // namespace lumiscan::testing
