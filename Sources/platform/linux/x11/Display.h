#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/Display.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/ScreenLayout.h"

namespace lumiscan::desktop::x11 {

/// The displays of an X server.
///
/// Without a compositing manager an overlay hides the windows beneath it, and they need time to paint
/// themselves again once it is gone. So the desktop is frozen before an overlay is shown: the overlay paints
/// the frozen picture, and pictures are taken from it, which is what the user saw, until shortly after the
/// overlay has gone.
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

  /// The display's picture as it was before the first overlay, which this call keeps; nothing where a
  /// compositor runs, or when it can't be taken.
  std::optional<platform::Image> freeze(platform::DisplayID display);
  /// Ends the use of frozen pictures.
  void thaw();

 private:
  /// The connection, opened again after a loss; null while no server answers.
  std::shared_ptr<Connection> connection() const;
  std::optional<platform::Image> snapshot(platform::DisplayID display) const;

  mutable std::mutex mutex_;
  mutable std::shared_ptr<Connection> connection_;
  std::map<std::string, ToolkitScreen> toolkitScreens_;
  std::map<platform::DisplayID, platform::Image> frozen_;
};

}  // namespace lumiscan::desktop::x11
