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
constexpr double smallestCropSide = 4;

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

void ScreenCaptureController::selectionWindowDidConfirm(SelectionWindow&, const platform::Rect& globalRect,
                                                        const platform::Screen& screen) {
  // Made before the windows close, since the arguments may live in one of them.
  auto capture = [weakSelf = weak_from_this(), request = takeRequest(), rect = globalRect, target = screen] {
    const auto snapshot = platform::Displays::shared().createImage(target.displayID);
    auto cropped = snapshot ? crop(*snapshot, rect, target) : std::nullopt;
    platform::MainQueue::async(
        [weakSelf, request, snapshotTaken = snapshot.has_value(), cropped = std::move(cropped)] {
          if (!weakSelf.expired()) deliverCropped(request, snapshotTaken, cropped);
        });
  };
  captureLog().info("selection confirmed " + std::to_string(static_cast<long>(globalRect.size.width)) + "×" +
                    std::to_string(static_cast<long>(globalRect.size.height)));
  closeAllWindows();
  platform::Task::detached(platform::TaskPriority::userInitiated, std::move(capture));
}

void ScreenCaptureController::deliverCropped(const Request& request, bool snapshotTaken,
                                             std::optional<platform::Image> cropped) {
  if (cropped) {
    request.deliver(outcome::Captured{*std::move(cropped)});
    return;
  }
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

std::optional<platform::Image> ScreenCaptureController::crop(const platform::Image& snapshot,
                                                             const platform::Rect& globalRect,
                                                             const platform::Screen& screen) {
  const auto& displays = platform::Displays::shared();
  const double mainHeight = displays.bounds(displays.mainDisplayID()).size.height;
  const platform::Rect display = displays.bounds(screen.displayID);
  const double scale = screen.backingScaleFactor;
  const platform::Rect pixels = platform::integral(
      {{scale * (globalRect.minX() - display.minX()),
        // From y upwards above the bottom of the main display to y downwards below the display's top.
        scale * ((mainHeight - globalRect.maxY()) - display.minY())},
       {scale * globalRect.size.width, scale * globalRect.size.height}});
  // Written so that a size that isn't a number is refused too.
  if (!(pixels.size.width >= smallestCropSide && pixels.size.height >= smallestCropSide)) return std::nullopt;
  return snapshot.cropped(pixels);
}

}  // namespace lumiscan
