// The program itself on a private desktop: real key grab, real overlay, real snapshot, real recogniser, real
// clipboard.

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <csignal>
#include <fstream>

#include "desktop/PrivateDesktop.h"

namespace lumiscan::testing {
namespace {

const std::vector<std::string> pageLines = {
    "The quick brown fox jumps over the lazy dog.",
    "Lumiscan copies whatever you can see:",
    "an error in a dialog, a name in a picture,",
    "the 24680 lines of a log from last night.",
};

std::string joined(const std::vector<std::string>& lines, const std::string& separator) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : separator) + line;
  return text;
}

class CaptureTest : public ::testing::Test {
 protected:
  // Where the page's content lies on the screen, without the window's frame.
  static constexpr int left = 100, top = 100, right = 800, bottom = 300;

  void SetUp() override {
    std::ofstream(desktop_.home() / "page") << joined(pageLines, "\n") << "\n";
    // A terminal that takes keys without showing them, and has no cursor to blink.
    page_ = std::make_unique<Process>(std::vector<std::string>{
        "xterm", "-class", "Page", "-fa", "DejaVu Sans Mono", "-fs", "14", "-geometry", "60x8+90+70", "-bg",
        "white", "-fg", "black", "-e", "stty -echo; printf '\\033[?25l'; cat ~/page; exec sleep 600"});
    ASSERT_TRUE(waitUntil([this] { return pageHasInk(); }));
    ASSERT_TRUE(waitUntil([this] { return desktop_.focusedWindow() == desktop_.windowsOfClass("Page")[0]; }));
    startProgram();
  }

  void startProgram() {
    program_ = std::make_unique<Process>(std::vector<std::string>{LUMISCAN_PROGRAM});
    ASSERT_TRUE(waitUntil([this] { return desktop_.shortcutIsTaken(); }));
  }

  /// Whether the last line of the page shows.
  bool pageHasInk() const {
    const auto windows = desktop_.windowsOfClass("Page");
    if (windows.empty()) return false;
    const auto pixels = desktop_.screenPixels();
    int dark = 0;
    for (int y = 170; y < 200; ++y)
      for (int x = left; x < right; ++x)
        if ((pixels[desktop_.indexOf(x, y)] & 0xFF) < 0x40) ++dark;
    return dark > 200;
  }

  void pressShortcut() { desktop_.pressKeys({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2}); }
  std::size_t overlays() const { return desktop_.windowsOfClass("Lumiscan").size(); }
  bool waitForOverlays(std::size_t count) {
    return waitUntil([&] { return overlays() == count; });
  }
  /// Whether the mouse and the keyboard are taken: then nobody else gets them.
  bool inputIsTaken() const { return !desktop_.canGrabPointer() && !desktop_.canGrabKeyboard(); }
  bool pageHasFocus() const { return desktop_.focusedWindow() == desktop_.windowsOfClass("Page").at(0); }

  void captureThePage() {
    pressShortcut();
    ASSERT_TRUE(waitForOverlays(1));
    desktop_.drag(left - 8, top - 8, right, bottom);
    ASSERT_TRUE(waitForOverlays(0));
  }
  bool waitForClipboard(const std::string& text) {
    return waitUntil([&] { return PrivateDesktop::clipboard() == text; });
  }

  PrivateDesktop desktop_;
  std::unique_ptr<Process> page_;
  std::unique_ptr<Process> program_;
};

TEST_F(CaptureTest, ADragBecomesTextOnThePasteboard) {
  captureThePage();
  EXPECT_TRUE(waitForClipboard(joined(pageLines, "\n"))) << PrivateDesktop::clipboard().value_or("no text");
  EXPECT_TRUE(waitUntil([this] { return pageHasFocus(); }));

  // Again, with the user's other choice of line breaks made while the program runs.
  const auto folder = desktop_.home() / "config" / "lumiscan";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "preferences.json") << R"({"keepLineBreaksByDefault": false})";
  captureThePage();
  EXPECT_TRUE(waitForClipboard(joined(pageLines, " "))) << PrivateDesktop::clipboard().value_or("no text");
}

TEST_F(CaptureTest, TheShortcutWorksWhateverTheLocks) {
  desktop_.pressKeys({KEY_CAPSLOCK});
  pressShortcut();
  ASSERT_TRUE(waitForOverlays(1));
  desktop_.pressKeys({KEY_ESC});
  ASSERT_TRUE(waitForOverlays(0));
  desktop_.pressKeys({KEY_NUMLOCK});
  pressShortcut();
  EXPECT_TRUE(waitForOverlays(1));
}

TEST_F(CaptureTest, EscapeAndAClickGiveTheDesktopBackAsItWas) {
  const auto before = desktop_.screenPixels();
  struct Ending {
    const char* name;
    std::function<void()> end;
  };
  const Ending endings[] = {
      {"Escape, with no click before it", [this] { desktop_.pressKeys({KEY_ESC}); }},
      {"a click",
       [this] {
         desktop_.buttonDown();
         desktop_.buttonUp();
       }},
  };
  for (const Ending& ending : endings) {
    SCOPED_TRACE(ending.name);
    pressShortcut();
    ASSERT_TRUE(waitUntil([this] { return overlays() == 1 && inputIsTaken(); }));
    EXPECT_TRUE(pageHasFocus()) << "the page's looks must not change";
    ending.end();
    ASSERT_TRUE(waitForOverlays(0));
    EXPECT_TRUE(waitUntil([this] { return desktop_.canGrabPointer() && desktop_.canGrabKeyboard(); }));
    EXPECT_TRUE(pageHasFocus());
    EXPECT_TRUE(waitUntil([&] { return desktop_.screenPixels() == before; }));
    EXPECT_EQ(PrivateDesktop::clipboard(), std::nullopt);
  }
}

TEST_F(CaptureTest, TheOverlayShowsTheDesktopWithACrosshairAndNothingElse) {
  desktop_.moveMouse(600, 500);
  const auto before = desktop_.screenPixels();
  pressShortcut();
  ASSERT_TRUE(waitForOverlays(1));
  const auto pixelAt = [this](const std::vector<std::uint32_t>& pixels, int x, int y) {
    return pixels[desktop_.indexOf(x, y)];
  };
  // An arm of the crosshair, white where the ground is black.
  ASSERT_TRUE(
      waitUntil([&] { return pixelAt(desktop_.screenPixels(), 595, 500) != pixelAt(before, 595, 500); }));

  desktop_.moveMouse(900, 400);
  const auto crosshairIsAlone = [&] {
    const auto now = desktop_.screenPixels();
    int differences = 0;
    for (int y = 0; y < desktop_.height(); ++y) {
      for (int x = 0; x < desktop_.width(); ++x) {
        if (pixelAt(now, x, y) == pixelAt(before, x, y)) continue;
        if (std::abs(x - 900) > 10 || std::abs(y - 400) > 10) return false;
        ++differences;
      }
    }
    return differences > 20;
  };
  EXPECT_TRUE(waitUntil(crosshairIsAlone));
}

TEST_F(CaptureTest, PressingTheShortcutAgainStartsAfresh) {
  pressShortcut();
  ASSERT_TRUE(waitForOverlays(1));
  const auto first = desktop_.windowsOfClass("Lumiscan");
  pressShortcut();
  ASSERT_TRUE(waitUntil([&] { return overlays() == 1 && desktop_.windowsOfClass("Lumiscan") != first; }));
  desktop_.drag(left - 8, top - 8, right, bottom);
  EXPECT_TRUE(waitForClipboard(joined(pageLines, "\n")));
}

TEST_F(CaptureTest, ASignalEndsTheProgramInGoodOrder) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    program_->signal(number);
    EXPECT_EQ(program_->waitForEnd(), 0);
    EXPECT_FALSE(desktop_.shortcutIsTaken());
    startProgram();
  }
}

TEST_F(CaptureTest, ASecondStartEndsAtOnceAndLeavesTheFirstAlone) {
  Process second({LUMISCAN_PROGRAM});
  EXPECT_EQ(second.waitForEnd(), 0);
  EXPECT_EQ(second.standardError(), "");
  EXPECT_EQ(second.standardOutput(), "");
  captureThePage();
  EXPECT_TRUE(waitForClipboard(joined(pageLines, "\n")));
  EXPECT_EQ(program_->exitStatus(), std::nullopt);
  // One that was killed is in nobody's way.
  program_->signal(SIGKILL);
  EXPECT_EQ(program_->waitForEnd(), 128 + SIGKILL);
  startProgram();
}

class DisplayLossTest : public CaptureTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(DisplayLossTest, EndsTheProgramAtOnce) {
  const std::string moment = GetParam();
  if (moment == "Dragging") {
    pressShortcut();
    ASSERT_TRUE(waitForOverlays(1));
    desktop_.moveMouse(left, top);
    desktop_.buttonDown();
    desktop_.moveMouse(right, bottom);
  } else if (moment == "Recognizing") {
    captureThePage();
  }
  const auto start = std::chrono::steady_clock::now();
  desktop_.server().signal(SIGKILL);
  EXPECT_EQ(program_->waitForEnd(), 1);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  EXPECT_NE(program_->standardError().find("the connection to the X display is lost"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(, DisplayLossTest, ::testing::Values("Idle", "Dragging", "Recognizing"),
                         [](const auto& moment) { return std::string(moment.param); });

}  // namespace
}  // namespace lumiscan::testing
