#pragma once

#include <map>
#include <optional>
#include <vector>

#include "platform/Display.h"

namespace lumiscan::testing {

class SimulatedDispatcher;
class SimulatedWindows;

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
  /// a picture is set, its pictures are `coordinateImage`s of the screen's size in pixels.
  platform::Screen attach(platform::DisplayID display, const platform::Rect& frame, double scale = 1);
  void detach(platform::DisplayID display);
  /// Nothing makes taking the picture fail.
  void setImage(platform::DisplayID display, std::optional<platform::Image> image);

  std::vector<platform::Screen> screens() const override { return screens_; }
  platform::DisplayID mainDisplayID() const override { return screens_.empty() ? 0 : screens_[0].displayID; }
  platform::Rect bounds(platform::DisplayID display) const override;
  std::optional<platform::Image> createImage(platform::DisplayID display) override;
  bool preflightScreenCaptureAccess() override { return accessGranted; }
  void requestScreenCaptureAccess() override { ++accessRequests; }

  bool accessGranted = true;
  int accessRequests = 0;
  std::vector<Snapshot> snapshots;

 private:
  const platform::Screen* find(platform::DisplayID display) const;

  const SimulatedDispatcher& dispatcher_;
  const SimulatedWindows& windows_;
  std::vector<platform::Screen> screens_;
  std::map<platform::DisplayID, std::optional<platform::Image>> images_;
};

}  // namespace lumiscan::testing
