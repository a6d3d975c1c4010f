#include "capture/ScreenCaptureController.h"

#include <string>
#include <utility>

#include "capture/CaptureLog.h"
#include "platform/Application.h"
#include "platform/Cursor.h"
#include "platform/Display.h"

namespace lumiscan {

namespace {

constexpr double watchdogSeconds = 90;

}  // namespace

void ScreenCaptureController::begin(CaptureMode mode, LineBreaksOverride lineBreaksOverride,
                                    CaptureCompletion completion) {
  auto& displays = platform::Displays::shared();
  if (!displays.preflightScreenCaptureAccess()) {
    captureLog().error("begin denied: no screen recording access");
    completion(outcome::NoScreenAccess{}, mode, lineBreaksOverride);
    return;
  }
  if (!selectionWindows_.empty()) closeAllWindows();
  active_ = {mode, lineBreaksOverride, std::move(completion)};

  const auto screens = displays.screens();
  if (screens.empty()) {
    // With nothing to select on, nothing could ever end the session.
    takeRequest().deliver(outcome::Cancelled{});
    return;
  }
  showOverlays(screens);
  platform::CursorStack::shared().push(platform::CursorShape::crosshair);
  crosshairPushed_ = true;
  armWatchdog();
  captureLog().info("selection surfaces shown: " + std::to_string(selectionWindows_.size()));
}

void ScreenCaptureController::showOverlays(const std::vector<platform::Screen>& screens) {
  const platform::Point mouse = platform::MouseEvent::mouseLocation();
  SelectionWindow* keyWindowCandidate = nullptr;
  for (const platform::Screen& screen : screens) {
    auto window = std::make_shared<SelectionWindow>(screen, weak_from_this());
    window->orderFrontRegardless();
    window->makeKey();
    if (platform::contains(screen.frame, mouse)) keyWindowCandidate = window.get();
    selectionWindows_.push_back(std::move(window));
  }
  platform::Application::shared().activateIgnoringOtherApps();
  if (keyWindowCandidate) keyWindowCandidate->makeKeyAndOrderFront();
}

void ScreenCaptureController::armWatchdog() {
  if (watchdogWorkItem_) watchdogWorkItem_->cancel();
  watchdogWorkItem_ = std::make_shared<platform::WorkItem>([weakSelf = weak_from_this()] {
    if (const auto self = weakSelf.lock()) self->watchdogFired();
  });
  platform::MainQueue::asyncAfter(watchdogSeconds, watchdogWorkItem_);
}

void ScreenCaptureController::watchdogFired() {
  if (selectionWindows_.empty()) return;
  captureLog().error("session watchdog: auto-cancel after timeout");
  closeAllWindows();
  takeRequest().deliver(outcome::Cancelled{});
}

void ScreenCaptureController::closeAllWindows() {
  if (watchdogWorkItem_) watchdogWorkItem_->cancel();
  watchdogWorkItem_ = nullptr;
  for (const auto& window : selectionWindows_) window->orderOut();
  selectionWindows_.clear();
  if (crosshairPushed_) platform::CursorStack::shared().pop();
  crosshairPushed_ = false;
}

ScreenCaptureController::Request ScreenCaptureController::takeRequest() { return std::exchange(active_, {}); }

void ScreenCaptureController::selectionWindowDidConfirmSelection(SelectionWindow&,
                                                                 const platform::Rect& globalRect,
                                                                 const platform::Screen& screen) {
  // Copies, since the arguments may live in a window that is about to close.
  const platform::Rect rect = globalRect;
  const platform::Screen target = screen;
  closeAllWindows();
  captureLog().info("selection confirmed " + std::to_string(static_cast<long>(rect.size.width)) + "×" +
                    std::to_string(static_cast<long>(rect.size.height)));
  platform::Task::detached(platform::TaskPriority::userInteractive,
                           [weakSelf = weak_from_this(), request = takeRequest(), rect, target] {
                             const auto snapshot = platform::Displays::shared().createImage(target.displayID);
                             const auto image = snapshot ? crop(*snapshot, rect, target) : std::nullopt;
                             platform::MainQueue::async([weakSelf, request, rect, target, image,
                                                         snapshotTaken = snapshot.has_value()] {
                               if (weakSelf.expired()) return;
                               if (image) {
                                 storeLastSelection(target.displayID, rect);
                                 request.deliver(outcome::Captured{*image});
                               } else {
                                 deliverUncropped(request, snapshotTaken);
                               }
                             });
                           });
}

void ScreenCaptureController::deliverUncropped(const Request& request, bool snapshotTaken) {
  captureLog().error(std::string("crop failed (snapshot nil: ") + (snapshotTaken ? "false" : "true") + ")");
  if (snapshotTaken)
    request.deliver(outcome::Cancelled{});
  else
    request.deliver(outcome::NoScreenAccess{});
}

void ScreenCaptureController::selectionWindowDidCancel(SelectionWindow&) {
  captureLog().info("selection cancelled");
  closeAllWindows();
  takeRequest().deliver(outcome::Cancelled{});
}

platform::Rect ScreenCaptureController::onDisplay(const platform::Rect& globalRect,
                                                  platform::DisplayID display) {
  const auto& displays = platform::Displays::shared();
  const double mainHeight = displays.bounds(displays.mainDisplayID()).size.height;
  const platform::Point origin = displays.bounds(display).origin;
  // From y upwards above the bottom of the main display to y downwards below the display's top.
  return {{globalRect.minX() - origin.x, (mainHeight - globalRect.maxY()) - origin.y}, globalRect.size};
}

std::optional<platform::Image> ScreenCaptureController::crop(const platform::Image& snapshot,
                                                             const platform::Rect& globalRect,
                                                             const platform::Screen& screen) {
  const double scale = screen.backingScaleFactor;
  const auto [origin, size] = onDisplay(globalRect, screen.displayID);
  const platform::Rect pixels = platform::integral(
      {{scale * origin.x, scale * origin.y}, {scale * size.width, scale * size.height}}, pixelTolerance);
  // Written so that a size that isn't a number is refused too.
  if (!(pixels.size.width >= smallestCropSide && pixels.size.height >= smallestCropSide)) return std::nullopt;
  return snapshot.cropped(pixels);
}

}  // namespace lumiscan
