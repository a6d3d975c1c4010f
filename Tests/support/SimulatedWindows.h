#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Dispatch.h"
#include "platform/Window.h"
#include "support/RecordingGraphicsContext.h"
#include "support/SimulatedDispatcher.h"
#include "support/SimulatedParts.h"

namespace lumiscan::testing {

/// The visible windows in their order, the key focus, and the mouse and the keyboard in the hands of a
/// test. Every input is an event of its own and reaches the windows as on a real desktop. Points are in
/// the global screen space.
class SimulatedWindows {
  using MousePhase = platform::Window::MousePhase;

 public:
  SimulatedWindows(SimulatedDispatcher& dispatcher, Effects& effects)
      : dispatcher_(dispatcher), effects_(effects) {}

  std::unique_ptr<platform::WindowPeer> makePeer(platform::Window& window) {
    return std::make_unique<Peer>(*this, window);
  }

  /// The visible windows, the topmost first: by level, then by who was last ordered front.
  std::vector<platform::Window*> visible() const {
    std::vector<platform::Window*> windows;
    for (const Peer* peer : peers_) windows.push_back(&peer->window);
    return windows;
  }
  /// Null when none is visible.
  platform::Window* topmost() const { return peers_.empty() ? nullptr : &peers_.front()->window; }
  platform::Window* keyWindow() const { return keyWindow_; }

  /// Moves the mouse without a button held, to the topmost visible window there.
  void mouseMove(platform::Point point) {
    mouseLocation = point;
    send(windowAt(point), MousePhase::moved);
  }
  /// Presses the primary button; the window under it becomes key if it can.
  void mouseDown(platform::Point point) {
    mouseLocation = point;
    pressedWindow_ = windowAt(point);
    if (const auto window = pressedWindow_.lock()) window->makeKey();
    send(pressedWindow_, MousePhase::down);
  }
  /// Moves the mouse with the button held; the events stay with the window in which it was pressed.
  void mouseDrag(platform::Point point) {
    mouseLocation = point;
    send(pressedWindow_, MousePhase::dragged);
  }
  void mouseUp(platform::Point point) {
    mouseLocation = point;
    send(std::exchange(pressedWindow_, {}), MousePhase::up);
  }
  /// Presses, drags and releases.
  void dragMouse(platform::Point from, platform::Point to) {
    mouseDown(from);
    mouseDrag(to);
    mouseUp(to);
  }
  /// Sends a key to the key window, if there is one.
  void keyDown(std::uint16_t keyCode, platform::ModifierFlags modifiers = 0) {
    dispatcher_.handleEvent([&] {
      if (keyWindow_) keyWindow_->sendKeyDown({keyCode, modifiers});
    });
  }

  /// Draws the whole window.
  static Drawing render(platform::Window& window) {
    RecordingGraphicsContext context;
    window.draw(context, {{0, 0}, window.frame().size});
    return context.drawing;
  }
  /// What was invalidated in the window since it was last asked, in window coordinates.
  std::vector<platform::Rect> takeInvalidated(const platform::Window& window) {
    const auto peer = std::ranges::find(peers_, &window, [](const Peer* each) { return &each->window; });
    return peer == peers_.end() ? std::vector<platform::Rect>{} : std::exchange((*peer)->invalidated, {});
  }

  platform::Point mouseLocation;

 private:
  class Peer : public platform::WindowPeer {
   public:
    Peer(SimulatedWindows& windows, platform::Window& owner) : window(owner), windows_(windows) {}
    ~Peer() override { Peer::orderOut(); }

    void orderFront() override {
      level_ = window.attributes().level;
      std::erase(windows_.peers_, this);
      const auto below =
          std::ranges::find_if(windows_.peers_, [this](const Peer* peer) { return peer->level_ <= level_; });
      windows_.peers_.insert(below, this);
      if (level_ == platform::windowLevelFloating) windows_.effects_.add("show " + render(window).content);
    }
    void orderOut() override {
      platform::MainQueue::assertCurrent();
      std::erase(windows_.peers_, this);
      if (isKey()) windows_.keyWindow_ = nullptr;
      if (animation_) animation_->cancel();
    }
    void animateAlpha(double, double seconds, const std::function<void()>& completion) override {
      animation_ = std::make_shared<platform::WorkItem>(completion);
      platform::MainQueue::asyncAfter(seconds, animation_);
    }
    void makeKey() override { windows_.keyWindow_ = &window; }
    bool isKey() const override { return windows_.keyWindow_ == &window; }
    void invalidate(const platform::Rect& rect) override {
      platform::MainQueue::assertCurrent();
      invalidated.push_back(rect);
    }

    platform::Window& window;
    std::vector<platform::Rect> invalidated;

   private:
    SimulatedWindows& windows_;
    int level_ = 0;
    std::shared_ptr<platform::WorkItem> animation_;
  };

  void send(const std::weak_ptr<platform::Window>& to, MousePhase phase) {
    dispatcher_.handleEvent([&] {
      // Not kept alive here: that a window outlives its own handlers is the window's business.
      if (platform::Window* const window = to.lock().get())
        window->sendMouseEvent(phase, {window->convertPointFromScreen(mouseLocation)});
    });
  }
  std::weak_ptr<platform::Window> windowAt(platform::Point point) const {
    for (const Peer* peer : peers_)
      if (contains(peer->window.frame(), point)) return peer->window.weak_from_this();
    return {};
  }

  SimulatedDispatcher& dispatcher_;
  Effects& effects_;
  std::vector<Peer*> peers_;  ///< Those of visible windows, the topmost first.
  platform::Window* keyWindow_ = nullptr;
  std::weak_ptr<platform::Window> pressedWindow_;
};

}  // namespace lumiscan::testing
