#pragma once

#include <algorithm>
#include <cassert>
#include <cmath>
#include <map>
#include <optional>
#include <vector>

#include "platform/Display.h"
#include "support/SimulatedDispatcher.h"
#include "support/SimulatedWindows.h"
#include "support/TestImages.h"

namespace lumiscan::testing {

/// Screens that a test attaches, with pictures that it chooses.
class SimulatedDisplays : public platform::Displays {
 public:
  SimulatedDisplays(const SimulatedDispatcher& dispatcher, const SimulatedWindows& windows)
      : dispatcher_(dispatcher), windows_(windows) {}

  /// How a picture was taken, for tests of when it may be.
  struct Snapshot {
    platform::DisplayID display = 0;
    bool onMainThread = false;
    bool windowsShowed = false;  ///< Whether any window of ours was visible.
  };

  /// Attaches a screen; the first one is the primary screen, whose frame has its origin at (0, 0). Unless
  /// a test chooses one, its pictures are `coordinateImage`s of the screen's size in pixels.
  platform::Screen attach(platform::DisplayID display, const platform::Rect& frame, double scale = 1) {
    assert(!screens_.empty() || (frame.origin == platform::Point{0, 0}));
    return screens_.emplace_back(platform::Screen{display, frame, frame, scale});
  }
  void detach(platform::DisplayID display) {
    std::erase_if(screens_, [display](const auto& screen) { return screen.displayID == display; });
  }
  std::vector<platform::Screen> screens() const override { return screens_; }
  platform::DisplayID mainDisplayID() const override { return screens_.empty() ? 0 : screens_[0].displayID; }
  platform::Rect bounds(platform::DisplayID display) const override {
    const platform::Screen* const screen = find(display);
    if (!screen) return {};
    const platform::Rect& frame = screen->frame;
    return {{frame.minX(), screens_[0].frame.maxY() - frame.maxY()}, frame.size};
  }
  std::optional<platform::Image> createImage(platform::DisplayID display) override {
    snapshots.push_back({display, dispatcher_.isMainThread(), windows_.topmost() != nullptr});
    const platform::Screen* const screen = find(display);
    if (!screen || !accessGranted) return std::nullopt;
    if (const auto set = images.find(display); set != images.end()) return set->second;
    const auto pixels = [&](double points) {
      return static_cast<int>(std::lround(points * screen->backingScaleFactor));
    };
    return coordinateImage(pixels(screen->frame.size.width), pixels(screen->frame.size.height));
  }
  bool preflightScreenCaptureAccess() override { return accessGranted; }
  void requestScreenCaptureAccess() override { ++accessRequests; }

  bool accessGranted = true;
  int accessRequests = 0;
  std::vector<Snapshot> snapshots;
  /// Pictures that a test has chosen; nothing makes taking the picture fail.
  std::map<platform::DisplayID, std::optional<platform::Image>> images;

 private:
  const platform::Screen* find(platform::DisplayID display) const {
    const auto found = std::ranges::find(screens_, display, &platform::Screen::displayID);
    return found == screens_.end() ? nullptr : &*found;
  }

  const SimulatedDispatcher& dispatcher_;
  const SimulatedWindows& windows_;
  std::vector<platform::Screen> screens_;
};

}  // namespace lumiscan::testing
