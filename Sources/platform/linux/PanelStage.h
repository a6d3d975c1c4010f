#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QPoint>
#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/linux/x11/Display.h"

namespace lumiscan::desktop {

class PanelPeer;

/// What the floating panels share: the X server's events, and how they keep out of pictures of the screen.
/// Main thread only, but for that.
class PanelStage : private QAbstractNativeEventFilter {
 public:
  /// The toolkit's connection. It and the displays outlive the stage.
  PanelStage(xcb_connection_t* connection, const x11::X11Displays& displays);
  ~PanelStage() override;

  xcb_connection_t* connection() const { return connection_; }
  const x11::X11Displays& displays() const { return displays_; }

  /// Called before a panel shows.
  std::function<void()> beforeShowing;

  void shows(PanelPeer& panel);
  void hides(PanelPeer& panel);

  /// Makes the panels that show paint nothing but what is behind them from now on: a message that is in the
  /// way of a picture has done its work, and one about the picture follows.
  void conceal() { concealAll(); }
  /// Any thread. The same, and returns once the screen shows it or should.
  void concealAndWait();

 private:
  /// A pixel of the X screen that showed a panel's ground, and its colour, 0xRRGGBB.
  struct Sample {
    QPoint pixel;
    std::uint32_t color = 0;
  };

  /// Returns a sample of each panel from before.
  std::vector<Sample> concealAll();
  /// Any thread.
  std::optional<std::uint32_t> colorAt(QPoint pixel) const;
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  xcb_connection_t* connection_;
  const x11::X11Displays& displays_;
  QObject context_;
  std::vector<PanelPeer*> panels_;
  std::atomic<int> visibleCount_ = 0;
};

/// The displays, with pictures on which no panel is.
class PanelFreeDisplays : public x11::X11Displays {
 public:
  /// Null for none. Main thread, while no picture is taken.
  void setStage(PanelStage* stage) { stage_ = stage; }
  std::optional<platform::Image> createImage(platform::DisplayID display) override;

 private:
  PanelStage* stage_ = nullptr;
};

}  // namespace lumiscan::desktop
