#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "desktop/PrivateDesktop.h"
#include "desktop/Servers.h"
#include "desktop/TrayPanel.h"

namespace lumiscan {

/// The program on a private desktop with a page of text, two screens and a panel, and a user who does now
/// this, now that. What the program should have done and did not is a std::runtime_error.
class RandomUse {
 public:
  RandomUse();

  /// Each kind of use once, in both states of what can be switched.
  void useEach();
  void useAny();
  /// Brings the desktop to the state in which it was at first.
  void tidyUp();

  const testing::Process& program() const { return *program_; }
  const testing::PrivateDesktop& desktop() const { return desktop_; }

 private:
  using Keys = std::vector<std::uint8_t>;

  void use(std::size_t kind);
  int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  std::size_t windows() const { return desktop_.windowsOfClass("Lumiscan").size(); }

  // Uses.
  void captureByKeys(const Keys& keys);
  void captureJoiningLines();
  void repeatByKeys();
  /// Clicks in the protocol's other words; false when the menu doesn't have the item any more.
  bool clickIfThere(int id);
  void chooseFromMenu(const QString& label);
  void chooseFromHistory();
  void showTheAboutBox();
  void changeInTheSettingsWindow();
  void changeThePreferencesFile();
  void switchTheCompositor();

  /// A session has just been asked for: ends it in one way or another.
  void goThroughTheSession();
  void askToClose(xcb_window_t window) const;
  void waitForWindows(std::size_t count, const char* what);

  testing::EventLoop loop_;
  testing::PrivateDesktop desktop_;
  const std::unique_ptr<testing::Process> speechServer_ = testing::startSilentSpeechServer(desktop_);
  testing::PrivateBus bus_;
  testing::TrayPanel panel_{bus_.address()};
  std::optional<testing::Process> page_, program_;
  bool hasCompositor_ = false;
  std::mt19937 random_{1};
  std::vector<std::function<void()>> uses_;
};

}  // namespace lumiscan
