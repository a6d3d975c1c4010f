#pragma once

#include <QTimer>
#include <QVariantAnimation>
#include <functional>
#include <memory>
#include <optional>

#include "platform/Window.h"
#include "platform/linux/PanelWindow.h"

namespace lumiscan::desktop {

class PanelStage;

/// A floating panel: a window whose content is drawn when it shows, and which never has the focus. Main
/// thread only.
class PanelPeer : public platform::WindowPeer {
 public:
  /// The window and the stage outlive the peer.
  PanelPeer(platform::Window& window, PanelStage& stage);
  ~PanelPeer() override;

  void orderFront() override;
  void orderOut() override;
  void animateAlpha(double alpha, double seconds, const std::function<void()>& completion) override;
  void makeKey() override {}
  bool isKey() const override { return false; }
  void invalidate(const platform::Rect& rect) override;

  // Called by the stage.
  xcb_window_t windowID() const {
    return native_ ? native_->id() : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
  }
  void paint();
  /// A pixel of the X screen where the panel has neither text nor a symbol.
  QPoint groundPixel() const { return native_->groundPixel(); }
  /// What the screen shows there, 0xRRGGBB, where the panel is opaque.
  std::optional<std::uint32_t> groundColor() const { return native_->groundColor(); }
  /// Another window has come above this one.
  void covered();
  /// From now on only what is behind the panel shows.
  void conceal();

 private:
  void open();
  void raise();
  void setOpacity(double opacity);

  platform::Window& window_;
  PanelStage& stage_;
  std::unique_ptr<PanelWindow> native_;
  std::unique_ptr<PanelWindow> shadow_;  ///< Only with a compositor.
  QVariantAnimation fade_;
  QTimer raise_;
  double alpha_ = 1;
  bool concealed_ = false;
};

}  // namespace lumiscan::desktop
