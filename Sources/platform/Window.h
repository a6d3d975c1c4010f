#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Event.h"
#include "platform/Geometry.h"
#include "platform/Graphics.h"
#include "platform/View.h"

namespace lumiscan::platform {

enum WindowStyle : unsigned {
  windowStyleBorderless = 0,
  windowStyleTitled = 1,
  windowStyleClosable = 2,
  windowStyleMiniaturizable = 4,
  windowStyleNonactivatingPanel = 128,
};

/// Higher levels show above lower ones.
inline constexpr int windowLevelNormal = 0;
inline constexpr int windowLevelFloating = 3;
/// Above docks, panels and full-screen windows of every program.
inline constexpr int windowLevelScreenSaver = 1000;

enum WindowCollectionBehavior : unsigned {
  canJoinAllSpaces = 1,       ///< Shows on every workspace.
  ignoresCycle = 64,          ///< Not among the windows that the user switches between.
  fullScreenAuxiliary = 256,  ///< May show beside and above full-screen windows.
};

/// What a desktop does for one window. Made by `Desktop::makeWindowPeer` when the window first shows,
/// owned by the window. Main thread only.
class WindowPeer {
 public:
  virtual ~WindowPeer() = default;
  /// Shows the window above the others of its level without activating the program.
  virtual void orderFront() = 0;
  virtual void orderOut() = 0;
  /// Changes the opacity of the showing window to `alpha` within `seconds`, then calls `completion`; not once
  /// the window was ordered out. Costs nothing when done. Only panels do; all others stay as they are.
  virtual void animateAlpha(double /*alpha*/, double /*seconds*/,
                            const std::function<void()>& /*completion*/) {}
  /// Asks for the key focus; it is there when this returns or soon after, without a click.
  virtual void makeKey() = 0;
  virtual bool isKey() const = 0;
  /// Marks a part of the window, in window coordinates, to be drawn again after the current event.
  virtual void invalidate(const Rect& rect) = 0;
};

/// A window. A titled one belongs to the desktop's window management: the user moves, minimises and closes
/// it, which hides it; its content is a `HostingView`, and its size is fixed, but that the desktop makes it
/// no higher than the screen. In points; `frame` is in the global screen space (origin at the bottom left of
/// the primary screen, y upwards), window coordinates have their origin at the window's bottom left, y
/// upwards. Main thread only. Windows are shared (`std::make_shared`): whoever hands an event to a window
/// keeps it alive until the event is handled, so a window may be dropped by its own handlers.
class Window : public std::enable_shared_from_this<Window> {
 public:
  /// `styleMask` is a set of `WindowStyle`. Nothing shows until the window is ordered front.
  Window(const Rect& contentRect, unsigned styleMask);
  virtual ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  /// How the window looks and behaves; what is set after it first showed has no effect before the next
  /// showing.
  struct Attributes {
    std::string title;  ///< Of a titled window.
    unsigned styleMask = windowStyleBorderless;
    int level = windowLevelNormal;
    bool opaque = true;
    Color backgroundColor = Color::white();
    bool hasShadow = true;
    double alphaValue = 1;
    bool acceptsMouseMovedEvents = false;
    unsigned collectionBehavior = 0;
    /// The desktop blurs what is behind the drawn part of the window, where it can.
    bool blursBehind = false;
  };
  Attributes& attributes() { return attributes_; }
  const Attributes& attributes() const { return attributes_; }

  /// Where the content of the window was put; a user may have moved a titled one since.
  const Rect& frame() const { return frame_; }
  /// Puts the window, before it first shows, into the middle of the free part of the screen with the mouse;
  /// of one that is too high the top is there.
  void center();
  void setContentView(std::unique_ptr<View> view);
  /// May be null.
  View* contentView() const { return contentView_.get(); }
  /// From the global screen space to window coordinates.
  Point convertPointFromScreen(Point point) const;

  /// Whether the window may have the key focus. Borderless windows may not unless a subclass says so.
  virtual bool canBecomeKey() const { return attributes_.styleMask & windowStyleTitled; }

  void orderFrontRegardless();
  /// Does nothing for a window that isn't showing or can't become key.
  void makeKey();
  void makeKeyAndOrderFront();
  void orderOut();
  /// For panels. Changes the opacity to `alpha` within `seconds`, and then calls `completion`, on the main
  /// thread; neither when the panel isn't showing, nor once it was ordered out.
  void animateAlphaValue(double alpha, double seconds, const std::function<void()>& completion);
  bool isVisible() const { return visible_; }
  bool isKeyWindow() const;

  /// Called by views.
  void invalidate(const Rect& rect);

  // Called by the desktop's peer.
  enum class MousePhase { moved, down, dragged, up };
  void sendMouseEvent(MousePhase phase, const MouseEvent& event);
  void sendKeyDown(const KeyEvent& event);
  /// The desktop can no longer give the window the user's input, or its screen has changed: its content gets
  /// the cancel command.
  void sendCancel();
  /// Draws the background and the content.
  void draw(GraphicsContext& context, const Rect& dirtyRect);

 private:
  Rect frame_;
  Attributes attributes_;
  std::unique_ptr<View> contentView_;
  std::unique_ptr<WindowPeer> peer_;
  bool visible_ = false;
};

}  // namespace lumiscan::platform
