#include <utility>

#include "capture/LastSelection.h"
#include "capture/ScreenCaptureController.h"
#include "platform/Display.h"
#include "platform/UserDefaults.h"

namespace lumiscan {

namespace {

constexpr std::string_view lastSelectionKey = "lastSelection";

/// A picture of the display if it is attached; nothing when it isn't or the picture can't be taken.
std::optional<platform::Image> snapshotOf(platform::DisplayID display) {
  auto& displays = platform::Displays::shared();
  for (const platform::Screen& screen : displays.screens())
    if (screen.displayID == display) return displays.createImage(display);
  return std::nullopt;
}

std::optional<platform::Image> cropped(const platform::Image& snapshot, const platform::Rect& fractions) {
  const double width = snapshot.width();
  const double height = snapshot.height();
  auto image =
      snapshot.cropped(platform::integral({{fractions.origin.x * width, fractions.origin.y * height},
                                           {fractions.size.width * width, fractions.size.height * height}},
                                          pixelTolerance));
  if (!image || image->width() < smallestCropSide || image->height() < smallestCropSide) return std::nullopt;
  return image;
}

}  // namespace

void ScreenCaptureController::storeLastSelection(platform::DisplayID display,
                                                 const platform::Rect& globalRect) {
  const platform::Size size = platform::Displays::shared().bounds(display).size;
  const platform::Rect rect = onDisplay(globalRect, display);
  const auto json = encoded(LastSelection{display,
                                          {{rect.origin.x / size.width, rect.origin.y / size.height},
                                           {rect.size.width / size.width, rect.size.height / size.height}}});
  if (json) platform::UserDefaults::standard().setObject(lastSelectionKey, platform::Data{*json});
}

std::optional<LastSelection> ScreenCaptureController::loadLastSelection() {
  const auto stored = platform::UserDefaults::standard().dataForKey(lastSelectionKey);
  return stored ? decodedLastSelection(stored->bytes) : std::nullopt;
}

void ScreenCaptureController::repeatLast(CaptureMode mode, LineBreaksOverride lineBreaksOverride,
                                         CaptureCompletion completion) {
  const Request request{mode, lineBreaksOverride, std::move(completion)};
  const auto selection = loadLastSelection();
  if (!selection) {
    request.deliver(outcome::NoPreviousSelection{});
    return;
  }
  platform::Task::detached(platform::TaskPriority::userInteractive, [request, selection = *selection] {
    const bool hasAccess = platform::Displays::shared().preflightScreenCaptureAccess();
    const auto snapshot = hasAccess ? snapshotOf(selection.displayID) : std::nullopt;
    platform::MainQueue::async([request, rect = selection.rect, snapshot] {
      if (!snapshot)
        request.deliver(outcome::NoScreenAccess{});
      else if (auto image = cropped(*snapshot, rect))
        request.deliver(outcome::Captured{*std::move(image)});
      else
        request.deliver(outcome::Cancelled{});
    });
  });
}

}  // namespace lumiscan
