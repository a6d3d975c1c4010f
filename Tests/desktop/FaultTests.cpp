// The program on a desktop where things go wrong: after each fault the next capture works. What else may go
// wrong, and where it is tried: docs/reliability.md.

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <string>

#include "desktop/CaptureFixture.h"
#include "desktop/Servers.h"

namespace lumiscan::testing {
namespace {

struct FaultTest : CaptureTest {
  /// Returns when the program has heard it, and a next press is none within the same millisecond, which would
  /// be a key's repetition.
  void pressAndBeHeard() {
    using std::chrono::steady_clock;
    const long before = logged("fired");
    pressShortcut();
    const auto next = steady_clock::now() + std::chrono::milliseconds(2);
    ASSERT_TRUE(waitUntil([&] { return logged("fired") > before && steady_clock::now() > next; }));
  }
  /// Another program takes the clipboard: not xclip itself, but its copy that stays, some time after its end.
  void fillClipboard() {
    const xcb_window_t before = desktop_.selectionOwner("CLIPBOARD");
    Process other({"xclip", "-selection", "clipboard", "-in", "/dev/null"});
    ASSERT_EQ(other.waitForEnd(), 0);
    ASSERT_TRUE(waitUntil([&] { return desktop_.selectionOwner("CLIPBOARD") != before; }));
  }
  /// Returns when the session has the input and has painted, for which it has taken note of the desktop.
  void beginSession() {
    constexpr int x = 1000, y = 600;
    desktop_.moveMouse(x, y);
    const std::uint32_t ground = desktop_.pixelAt(x, y);
    pressShortcut();
    ASSERT_TRUE(waitUntil([&] { return overlays() == 1 && desktop_.inputIsTaken(); }));
    ASSERT_TRUE(waitUntil([&] { return desktop_.pixelAt(x, y) != ground; })) << "no crosshair";
  }
  /// Whether a whole capture works. Those before must have ended.
  void expectACapture() {
    fillClipboard();
    captureThePage();
    EXPECT_TRUE(waitForClipboard(pageText)) << PrivateDesktop::clipboard().value_or("no text");
    EXPECT_EQ(program_->exitStatus(), std::nullopt);
  }
  long logged(const std::string& line) const { return program_->countInError(line); }
};

TEST_F(FaultTest, WindowAndCompositingManagersMayComeAndGo) {
  const std::pair<const char*, std::function<void()>> faults[] = {
      {"a window manager restarts", [this] { desktop_.restartWindowManager(); }},
      {"a compositor starts", [this] { desktop_.startCompositor(); }},
      {"a compositor dies", [this] { desktop_.endCompositor(); }},
  };
  for (const auto& [name, happen] : faults) {
    SCOPED_TRACE(name);
    fillClipboard();
    beginSession();
    happen();
    EXPECT_TRUE(desktop_.inputIsTaken()) << "the session goes on";
    EXPECT_TRUE(waitUntil([this] { return pageHasInk(); })) << "and shows the desktop";
    dragOverThePage();
    ASSERT_TRUE(waitForOverlays(0));
    EXPECT_TRUE(waitForClipboard(pageText)) << PrivateDesktop::clipboard().value_or("no text");
    expectACapture();
  }
}

TEST_F(FaultTest, ASessionGoesOnAfterTheProgramWasSuspended) {
  beginSession();
  program_->signal(SIGSTOP);
  dragOverThePage();
  program_->signal(SIGCONT);
  ASSERT_TRUE(waitForOverlays(0));
  EXPECT_TRUE(waitForClipboard(pageText));
  expectACapture();
}

TEST_F(FaultTest, ACaptureMayBeginAtEveryStageOfAnother) {
  long sessions = 0;
  for (const std::string stage :
       {"opening", "dragging", "taking the picture", "recognizing", "showing the message"}) {
    SCOPED_TRACE(stage);
    fillClipboard();
    const bool isReplaced = stage == "opening" || stage == "dragging";
    if (stage == "opening")
      pressAndBeHeard();
    else
      beginSession();
    if (stage == "dragging") desktop_.beginDrag(left, top, right, bottom);
    if (!isReplaced) dragOverThePage();
    ASSERT_TRUE(isReplaced || stage == "taking the picture" || waitForOverlays(0));
    const auto messageShows = [this] { return !desktop_.windowsOfClass("LumiscanPanel").empty(); };
    ASSERT_TRUE(stage != "showing the message" || waitUntil(messageShows));
    pressShortcut();
    sessions += 2;
    ASSERT_TRUE(
        waitUntil([&] { return logged("selection surfaces shown") == sessions && desktop_.inputIsTaken(); }));
    desktop_.buttonUp();
    desktop_.pressKeys({KEY_ESC});
    ASSERT_TRUE(waitForOverlays(0));
    EXPECT_TRUE(isReplaced || waitForClipboard(pageText)) << "the first one's";
    expectACapture();
    ++sessions;
  }
}

TEST_F(FaultTest, FiveHundredPressesLeaveOneSession) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 500; ++i) pressAndBeHeard();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  ASSERT_TRUE(
      waitUntil([this] { return logged("selection surfaces shown") == 500 && desktop_.inputIsTaken(); }));
  EXPECT_EQ(overlays(), 1U);
  dragOverThePage();
  EXPECT_TRUE(waitForClipboard(pageText));
  expectACapture();
}

TEST_F(FaultTest, NeedsNoFontsIconsOrCursorsAndNoReaderOfItsLog) {
  std::ofstream(desktop_.home() / "fonts.conf") << "<fontconfig></fontconfig>\n";
  startProgram({"env", "FONTCONFIG_FILE=" + (desktop_.home() / "fonts.conf").string(),
                "XDG_DATA_DIRS=/nonexistent", "XCURSOR_PATH=/nonexistent", "QT_PLUGIN_PATH=/nonexistent"});
  expectACapture();
  expectACapture();
  // The reader of the log ends once the program runs.
  startProgram({"sh", "-c", "exec \"$0\" 2>&1 | head -n 1"});
  expectACapture();
  expectACapture();
}

TEST_F(FaultTest, AFullDiskCostsOnlyWhatIsStored) {
  // The log goes through a pipe, since it would be cut short too.
  startProgram({"sh", "-c", "prlimit --fsize=0 \"$0\" 2>&1 | cat >&2"});
  expectACapture();
  EXPECT_TRUE(waitUntil([this] { return logged("preferences can't be written") > 0; }));
  expectACapture();
}

TEST_F(FaultTest, ACaptureForWhichMemoryIsShortIsTheOnlyOneLost) {
  fillClipboard();
  // Enough to show a session, but not to take its picture.
  std::ifstream sizes("/proc/" + std::to_string(program_->id()) + "/statm");
  std::size_t dataPages = 0;
  for (int field = 0; field < 6; ++field) sizes >> dataPages;
  rlimit before{};
  prlimit(program_->id(), RLIMIT_DATA, nullptr, &before);
  const rlimit little{dataPages * static_cast<std::size_t>(getpagesize()) + (4 << 20), before.rlim_max};
  prlimit(program_->id(), RLIMIT_DATA, &little, nullptr);
  beginSession();
  dragOverThePage();
  ASSERT_TRUE(waitUntil([this] { return logged("crop failed (snapshot nil: true)") == 1; }));
  prlimit(program_->id(), RLIMIT_DATA, &before, nullptr);
  // At once, while what the first session showed is still kept.
  captureThePage();
  EXPECT_TRUE(waitForClipboard(pageText)) << PrivateDesktop::clipboard().value_or("no text");
  EXPECT_EQ(logged("crop failed"), 1);
}

TEST_F(FaultTest, AHangingSessionBusHoldsNothingUp) {
  const PrivateBus bus;
  setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
  bus.signal(SIGSTOP);
  startProgram();
  EXPECT_EQ(logged("the session bus doesn't answer"), 1);
  expectACapture();
}

}  // namespace
}  // namespace lumiscan::testing
