// The program itself on a private desktop: real key grab, real overlay, real snapshot, real recogniser, real
// clipboard.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "desktop/CaptureFixture.h"
#include "desktop/Servers.h"
#include "platform/linux/drawing/QRCode.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/UnmanagedWindow.h"
#include "support/TestImages.h"

namespace lumiscan::testing {
namespace {

/// Captures in every mode, with the program started in one way or another.
class EveryModeTest : public CaptureTest, public ::testing::WithParamInterface<std::vector<std::string>> {
 protected:
  /// Found in the text and in the code that are captured.
  static constexpr const char* secret = "24680 lines";
  static constexpr const char* code = "24680 lines in a code";

  void showCode() {
    const auto modules = desktop::makeQRCode(code, platform::QRCorrectionLevel::medium).value();
    constexpr std::uint16_t pixelsPerModule = 8;
    const auto side = static_cast<std::uint16_t>(pixelsPerModule * modules.width());
    desktop_.showPicture({520, 340, side, side}, [&](std::uint32_t x, std::uint32_t y) {
      return pixel(modules, int(x / pixelsPerModule), int(y / pixelsPerModule));
    });
  }

  /// The preferences, or a version of them that the disk doesn't have or that it replaces.
  bool isOfThePreferences(const std::filesystem::path& file) const {
    return file.parent_path() == preferences_ && file.filename().string().starts_with("preferences.json");
  }
  /// Whether other versions than the one that counts have gone.
  bool onlyTheLastVersionIsThere() const {
    return std::distance(std::filesystem::directory_iterator(preferences_), {}) == 2;  // And the lock.
  }
  /// Where the secret is found, but for the file that is shown and the preferences.
  std::vector<std::string> placesOfTheSecret() const {
    namespace fs = std::filesystem;
    std::vector<std::string> places;
    const auto look = [&](const std::string& place, const std::string& content) {
      if (content.find(secret) != std::string::npos) places.push_back(place);
    };
    look("standard output", program_->standardOutput());
    look("log", program_->standardError());
    for (const std::string& content : desktop_.windowProperties()) look("a window's property", content);
    for (const auto& entry : fs::recursive_directory_iterator(desktop_.home()))
      if (entry.is_regular_file() && entry.path() != desktop_.home() / "page" &&
          !isOfThePreferences(entry.path()))
        look(entry.path(), contentOf(entry));
    std::error_code gone;
    for (const auto& entry : fs::directory_iterator(fs::temp_directory_path(), gone))
      if (entry.is_regular_file(gone) && entry.last_write_time(gone) >= start_)
        look(entry.path(), contentOf(entry));
    // Open files may have no name, and other programs that were started, such as the voices, tell too.
    const auto process = fs::path("/proc") / std::to_string(program_->id());
    for (const auto& entry : fs::directory_iterator(process / "fd", gone))
      if (const auto file = fs::read_symlink(entry, gone);
          entry.is_regular_file(gone) && !isOfThePreferences(file))
        look("open: " + file.string(), contentOf(entry));
    for (const auto& entry : fs::directory_iterator("/proc"))
      if (contentOf(entry.path() / "environ").find("HOME=" + desktop_.home().string()) != std::string::npos)
        look("a command line", contentOf(entry.path() / "cmdline"));
    return places;
  }

  const std::filesystem::path preferences_ = desktop_.home() / "config" / "lumiscan";
  const std::filesystem::file_time_type start_ = std::filesystem::file_time_type::clock::now();
  std::unique_ptr<Process> speechServer_;
};

TEST_P(EveryModeTest, CapturesWithoutANetworkAndLeavesTheTextOnlyWhereItBelongs) {
  std::vector<std::string> attempt = GetParam();
  attempt.push_back("true");
  if (Process(attempt).waitForEnd() != 0) GTEST_SKIP() << "this kernel allows no namespace without a network";
  program_ = nullptr;
  speechServer_ = startSilentSpeechServer(desktop_);
  showCode();
  desktop_.writePreferences(R"({"additiveEnabled": true})");
  startProgram(GetParam());

  // Text, speech, the last selection again, and a code.
  const std::string twice = pageText + "\n" + pageText;
  const std::pair<std::vector<std::uint8_t>, std::string> modes[] = {
      {{KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2}, pageText},
      {{KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_S}, twice},
      {{KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_R}, twice + "\n" + pageText},
      {{KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_B}, code},
  };
  const xcb_window_t focused = desktop_.focusedWindow();
  for (const auto& [keys, text] : modes) {
    desktop_.pressKeys(keys);
    if (keys.back() != KEY_R) {
      ASSERT_TRUE(waitUntil([this] { return overlays() == 1 && desktop_.inputIsTaken(); }));
      EXPECT_EQ(desktop_.focusedWindow(), focused) << "its window's looks must not change";
      if (text == code)
        desktop_.drag(495, 325, 1279, 799);
      else
        dragOverThePage();
    }
    ASSERT_TRUE(waitForClipboard(text)) << PrivateDesktop::clipboard().value_or("no text");
    ASSERT_TRUE(waitUntil([this] { return desktop_.windowsOfClass("LumiscanPanel").size() == 1; }));
    EXPECT_THAT(placesOfTheSecret(), ::testing::IsEmpty());
    EXPECT_TRUE(waitUntil([this] { return onlyTheLastVersionIsThere(); }));
    EXPECT_TRUE(waitUntil([&] { return desktop_.focusedWindow() == focused; }));
  }
  program_->signal(SIGTERM);
  EXPECT_EQ(program_->waitForEnd(), 0);
  EXPECT_THAT(placesOfTheSecret(), ::testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, EveryModeTest,
                         ::testing::Values(std::vector<std::string>{},
                                           std::vector<std::string>{"unshare", "--map-root-user", "--net"}),
                         [](const auto& run) { return run.param.empty() ? "Network" : "NoNetwork"; });

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
  EXPECT_TRUE(waitForClipboard(pageText));
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
    desktop_.beginDrag(left, top, right, bottom);
  } else if (moment == "Recognizing") {
    captureThePage();
  }
  const auto start = std::chrono::steady_clock::now();
  desktop_.server().signal(SIGKILL);
  EXPECT_EQ(program_->waitForEnd(), 1);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  EXPECT_NE(program_->standardError().find("the connection to the X display is lost"), std::string::npos)
      << program_->standardError();
}

// The moment that the test above seldom meets: the overlay is painted before the loss is noticed.
TEST(UnmanagedWindow, IsWrittenToOverABrokenConnection) {
  const PrivateDesktop desktop;
  const auto connection = desktop::x11::Connection::open();
  desktop::x11::UnmanagedWindow::Options options;
  options.pixels = {0, 0, 1024, 600};
  desktop::x11::UnmanagedWindow window(connection->get(), options);
  desktop.server().signal(SIGKILL);
  ASSERT_TRUE(waitUntil([&] { return !connection->isAlive(); }));
  window.write(QImage(1024, 600, QImage::Format_RGB32), {0, 0});
}

INSTANTIATE_TEST_SUITE_P(, DisplayLossTest, ::testing::Values("Idle", "Dragging", "Recognizing"),
                         [](const auto& moment) { return std::string(moment.param); });

}  // namespace
}  // namespace lumiscan::testing
