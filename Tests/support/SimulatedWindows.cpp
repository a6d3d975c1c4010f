#include "support/SimulatedWindows.h"

#include <algorithm>
#include <utility>

#include "platform/Dispatch.h"
#include "support/SimulatedDispatcher.h"
#include "support/SimulatedParts.h"

namespace lumiscan::testing {

using platform::Point;
using platform::Rect;
using platform::Window;
using platform::MainQueue::assertCurrent;
using MousePhase = platform::Window::MousePhase;

class SimulatedWindowPeer : public platform::WindowPeer {
 public:
  SimulatedWindowPeer(SimulatedWindows& windows, Window& owner) : window(owner), windows_(windows) {}
  ~SimulatedWindowPeer() override { leave(); }

  void orderFront() override {
    assertCurrent();
    level = window.attributes().level;
    std::erase(windows_.peers_, this);
    const auto below =
        std::ranges::find_if(windows_.peers_, [this](auto* peer) { return peer->level <= level; });
    windows_.peers_.insert(below, this);
    if (level == platform::windowLevelFloating)
      windows_.effects_.add("show " + SimulatedWindows::render(window).content);
  }
  void orderOut() override { leave(); }
  void animateAlpha(double, double seconds, const std::function<void()>& completion) override {
    assertCurrent();
    animation_ = std::make_shared<platform::WorkItem>(completion);
    platform::MainQueue::asyncAfter(seconds, animation_);
  }
  void makeKey() override {
    assertCurrent();
    windows_.keyWindow_ = &window;
  }
  bool isKey() const override { return windows_.keyWindow_ == &window; }
  void invalidate(const Rect& rect) override {
    assertCurrent();
    invalidated.push_back(rect);
  }

  Window& window;
  int level = 0;
  std::vector<Rect> invalidated;

 private:
  void leave() {
    assertCurrent();
    std::erase(windows_.peers_, this);
    if (windows_.keyWindow_ == &window) windows_.keyWindow_ = nullptr;
    if (animation_) animation_->cancel();
  }

  SimulatedWindows& windows_;
  std::shared_ptr<platform::WorkItem> animation_;
};

std::unique_ptr<platform::WindowPeer> SimulatedWindows::makePeer(Window& window) {
  return std::make_unique<SimulatedWindowPeer>(*this, window);
}

std::vector<Window*> SimulatedWindows::visible() const {
  std::vector<Window*> windows;
  for (const auto* peer : peers_) windows.push_back(&peer->window);
  return windows;
}

Window* SimulatedWindows::topmost() const { return peers_.empty() ? nullptr : &peers_.front()->window; }

std::weak_ptr<Window> SimulatedWindows::windowAt(Point point) const {
  for (const auto* peer : peers_)
    if (contains(peer->window.frame(), point)) return peer->window.weak_from_this();
  return {};
}

void SimulatedWindows::send(const std::weak_ptr<Window>& to, MousePhase phase) {
  dispatcher_.handleEvent([&] {
    // Not kept alive here: that a window outlives its own handlers is the window's business.
    if (Window* const window = to.lock().get())
      window->sendMouseEvent(phase, {window->convertPointFromScreen(mouseLocation)});
  });
}

void SimulatedWindows::mouseMove(Point point) {
  mouseLocation = point;
  send(windowAt(point), MousePhase::moved);
}

void SimulatedWindows::mouseDown(Point point) {
  mouseLocation = point;
  pressedWindow_ = windowAt(point);
  if (const auto window = pressedWindow_.lock()) window->makeKey();
  send(pressedWindow_, MousePhase::down);
}

void SimulatedWindows::mouseDrag(Point point) {
  mouseLocation = point;
  send(pressedWindow_, MousePhase::dragged);
}

void SimulatedWindows::mouseUp(Point point) {
  mouseLocation = point;
  send(std::exchange(pressedWindow_, {}), MousePhase::up);
}

void SimulatedWindows::dragMouse(Point from, Point to) {
  mouseDown(from);
  mouseDrag(to);
  mouseUp(to);
}

void SimulatedWindows::keyDown(std::uint16_t keyCode, platform::ModifierFlags modifiers) {
  dispatcher_.handleEvent([&] {
    if (keyWindow_) keyWindow_->sendKeyDown({keyCode, modifiers});
  });
}

Drawing SimulatedWindows::render(Window& window) {
  RecordingGraphicsContext context;
  window.draw(context, {{0, 0}, window.frame().size});
  return context.drawing;
}

std::vector<Rect> SimulatedWindows::takeInvalidated(const Window& window) {
  const auto peer = std::ranges::find_if(peers_, [&](auto* each) { return &each->window == &window; });
  return peer == peers_.end() ? std::vector<Rect>{} : std::exchange((*peer)->invalidated, {});
}

}  // namespace lumiscan::testing
