#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/Window.h"
#include "support/RecordingGraphicsContext.h"

namespace lumiscan::testing {

class Effects;
class SimulatedDispatcher;
class SimulatedWindowPeer;

/// The visible windows in their order, the key focus, and the mouse and the keyboard in the hands of a
/// test. Every input is an event of its own and reaches the windows as on a real desktop. Points are in
/// the global screen space.
class SimulatedWindows {
 public:
  SimulatedWindows(SimulatedDispatcher& dispatcher, Effects& effects)
      : dispatcher_(dispatcher), effects_(effects) {}

  std::unique_ptr<platform::WindowPeer> makePeer(platform::Window& window);

  /// The visible windows, the topmost first: by level, then by who was last ordered front.
  std::vector<platform::Window*> visible() const;
  /// Null when none is visible.
  platform::Window* topmost() const;
  platform::Window* keyWindow() const { return keyWindow_; }

  /// Moves the mouse without a button held, to the topmost visible window there.
  void mouseMove(platform::Point point);
  /// Presses the primary button; the window under it becomes key if it can.
  void mouseDown(platform::Point point);
  /// Moves the mouse with the button held; the events stay with the window in which it was pressed.
  void mouseDrag(platform::Point point);
  void mouseUp(platform::Point point);
  /// Presses, drags and releases.
  void dragMouse(platform::Point from, platform::Point to);
  /// Sends a key to the key window, if there is one.
  void keyDown(std::uint16_t keyCode, platform::ModifierFlags modifiers = 0);

  /// Draws the whole window.
  static Drawing render(platform::Window& window);
  /// What was invalidated in the window since it was last asked, in window coordinates.
  std::vector<platform::Rect> takeInvalidated(const platform::Window& window);

  platform::Point mouseLocation;

 private:
  friend class SimulatedWindowPeer;

  void send(const std::weak_ptr<platform::Window>& to, platform::Window::MousePhase phase);
  std::weak_ptr<platform::Window> windowAt(platform::Point point) const;

  SimulatedDispatcher& dispatcher_;
  Effects& effects_;
  std::vector<SimulatedWindowPeer*> peers_;  ///< Those of visible windows, the topmost first.
  platform::Window* keyWindow_ = nullptr;
  std::weak_ptr<platform::Window> pressedWindow_;
};

}  // namespace lumiscan::testing
