#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/Display.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/FrozenDesktop.h"
#include "platform/linux/x11/ScreenLayout.h"

namespace lumiscan::desktop::x11 {

/// A pixel of a display that an overlay paints: `x` and `y` from the display's top left, y downwards; colours
/// as 0xRRGGBB.
struct Mark {
  int x = 0;
  int y = 0;
  std::uint32_t ground = 0;
  std::uint32_t color = 0;
};

/// What an overlay has to paint: without a compositor the desktop as it was before the first overlay, with
/// one the mark. Neither when no picture can be taken.
struct OverlayGround {
  std::shared_ptr<const FrozenDesktop> frozenDesktop;
  /// Whether there is no compositor and `freeze` has yet to be called, which it must be before anything is
  /// painted on the overlay or the overlay goes.
  bool isToBeFrozen = false;
  std::optional<Mark> mark;
};

/// Takes overlays that show out of a picture that is about to be taken. Any thread.
class OverlayConcealer {
 public:
  virtual ~OverlayConcealer() = default;
  /// Returns once the overlays have been told to paint nothing, their mark included; false when that would
  /// take too long. Either way `reveal` follows.
  virtual bool conceal() = 0;
  virtual void reveal() = 0;
};

/// The displays of an X server.
///
/// Without a compositing manager an overlay hides the windows beneath it, and they need time to paint
/// themselves again once it is gone. So the desktop is frozen before an overlay is shown: the overlay paints
/// the frozen picture, and pictures are taken from it, which is what the user saw, until shortly after the
/// overlay has gone.
///
/// With one, the screen keeps showing an overlay that has gone until the compositor has painted it anew. So
/// each overlay paints one pixel in a colour a shade off its ground, and a picture waits until the ground is
/// back. For a picture that is taken while overlays show, they paint nothing meanwhile.
class X11Displays : public platform::Displays {
 public:
  std::vector<platform::Screen> screens() const override;
  platform::DisplayID mainDisplayID() const override;
  platform::Rect bounds(platform::DisplayID display) const override;
  std::optional<platform::Image> createImage(platform::DisplayID display) override;
  bool preflightScreenCaptureAccess() override;
  void requestScreenCaptureAccess() override;

  /// The layout as it is now. Any thread.
  ScreenLayout layout() const;
  /// Where the mouse is, in the global screen space. Any thread.
  platform::Point mouseLocation() const;

  /// What the toolkit alone knows of a screen.
  struct ToolkitScreen {
    double scale = 1;
    std::optional<platform::Rect> workArea;  ///< Pixels of the X screen.
  };
  /// By the output's name. Any thread.
  void setToolkitScreens(std::map<std::string, ToolkitScreen> screens);

  // For the overlays, and on their thread, the main one.
  /// Null for none; it outlives its use here.
  void setConcealer(OverlayConcealer* concealer);
  /// Called before an overlay over the display shows.
  OverlayGround overlayOpens(platform::DisplayID display);
  /// Freezes what the screen shows on a display. Null when that can't be done.
  std::shared_ptr<const FrozenDesktop> freeze(platform::DisplayID display);
  /// Called when the last overlay has been hidden.
  void overlaysClosed();
  /// Drops the frozen pictures of displays that are no longer as they were.
  void screensChanged();
  /// Ends the use of frozen pictures: what is beneath the overlays has painted itself by now.
  void thaw();

 private:
  /// The connection, opened again after a loss; null while no server answers.
  std::shared_ptr<Connection> connection() const;
  std::shared_ptr<const FrozenDesktop> frozen(platform::DisplayID display) const;
  std::optional<Mark> placeMark(platform::DisplayID display);
  std::optional<Mark> knownMark(platform::DisplayID display) const;
  std::optional<std::uint32_t> pixelColor(platform::DisplayID display, int x, int y) const;
  /// Waits until the screen shows none of our overlays, for a third of a second from `since` at the most.
  void waitForRepaint(platform::DisplayID display, const Mark& mark,
                      std::chrono::steady_clock::time_point since) const;

  mutable std::mutex mutex_;
  mutable std::shared_ptr<Connection> connection_;
  std::map<std::string, ToolkitScreen> toolkitScreens_;
  std::map<platform::DisplayID, std::shared_ptr<const FrozenDesktop>> frozen_;
  std::map<platform::DisplayID, Mark> marks_;
  OverlayConcealer* concealer_ = nullptr;
  bool overlaysShow_ = false;
  std::chrono::steady_clock::time_point overlaysClosedAt_;
};

}  // namespace lumiscan::desktop::x11
