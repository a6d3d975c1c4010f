#include "output/ResultHUD.h"

#include <algorithm>
#include <utility>

#include "output/HUDContentView.h"
#include "platform/Display.h"
#include "settings/Settings.h"

namespace lumiscan {

namespace {

using platform::Rect;
using platform::Size;

constexpr double displaySeconds = 1.8;
constexpr double errorDisplaySeconds = 2.6;
constexpr double fadeSeconds = 0.25;
// In points.
constexpr double minimumWidth = 240;
constexpr double maximumWidth = 420;
constexpr double gapBelowTop = 12;
constexpr Rect areaWithoutScreen{{0, 0}, {1440, 900}};

/// The area to use of the screen with the mouse, or else of the main one. Global screen space.
Rect visibleArea() {
  const auto screens = platform::Displays::shared().screens();
  const platform::Point mouse = platform::MouseEvent::mouseLocation();
  for (const platform::Screen& screen : screens)
    if (contains(screen.frame, mouse)) return screen.visibleFrame;
  // The main screen is the first.
  return screens.empty() ? areaWithoutScreen : screens.front().visibleFrame;
}

Rect panelFrame(Size fitting) {
  const Rect area = visibleArea();
  const double width = std::clamp(fitting.width, minimumWidth, maximumWidth);
  return {{area.midX() - width / 2, area.maxY() - fitting.height - gapBelowTop}, {width, fitting.height}};
}

std::shared_ptr<platform::Window> makePanel(const Rect& frame) {
  auto panel = std::make_shared<platform::Window>(frame, platform::windowStyleNonactivatingPanel);
  panel->attributes().level = platform::windowLevelFloating;
  panel->attributes().opaque = false;
  panel->attributes().backgroundColor = platform::Color::clear();
  panel->attributes().hasShadow = true;
  panel->attributes().collectionBehavior =
      platform::canJoinAllSpaces | platform::ignoresCycle | platform::fullScreenAuxiliary;
  panel->attributes().blursBehind = true;
  return panel;
}

}  // namespace

ResultHUD::~ResultHUD() { close(); }

void ResultHUD::show(const std::string& title, const std::optional<std::string>& preview, bool isError,
                     const std::optional<std::string>& icon, std::optional<double> duration) {
  if (!Settings::showHUD()) return;
  close();
  auto content = std::make_unique<HUDContentView>(title, preview, isError, icon);
  const Size fitting = content->fittingSize();
  if (!(fitting.width > 0 && fitting.height > 0)) return;

  const Rect frame = panelFrame(fitting);
  content->setFrame({{0, 0}, frame.size});
  panel_ = makePanel(frame);
  panel_->setContentView(std::move(content));
  panel_->orderFrontRegardless();

  hideWorkItem_ = std::make_shared<platform::WorkItem>([weakSelf = weak_from_this()] {
    if (const auto self = weakSelf.lock()) self->fadeOut();
  });
  platform::MainQueue::asyncAfter(duration.value_or(isError ? errorDisplaySeconds : displaySeconds),
                                  hideWorkItem_);
}

void ResultHUD::fadeOut() {
  if (!panel_) return;
  panel_->animateAlphaValue(0, fadeSeconds, [weakSelf = weak_from_this(), panel = std::weak_ptr(panel_)] {
    const auto faded = panel.lock();
    if (faded) faded->orderOut();
    const auto self = weakSelf.lock();
    // A newer panel stays, with its own time.
    if (self && self->panel_ == faded) self->panel_ = nullptr;
  });
}

void ResultHUD::close() {
  if (hideWorkItem_) hideWorkItem_->cancel();
  hideWorkItem_ = nullptr;
  if (panel_) panel_->orderOut();
  panel_ = nullptr;
}

}  // namespace lumiscan
