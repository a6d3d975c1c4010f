#include "support/SimulatedDisplays.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "support/SimulatedDispatcher.h"
#include "support/SimulatedWindows.h"
#include "support/TestImages.h"

namespace lumiscan::testing {

using platform::DisplayID;
using platform::Rect;
using platform::Screen;

Screen SimulatedDisplays::attach(DisplayID display, const Rect& frame, double scale) {
  assert(!screens_.empty() || (frame.origin == platform::Point{0, 0}));
  return screens_.emplace_back(Screen{display, frame, frame, scale});
}

void SimulatedDisplays::detach(DisplayID display) {
  std::erase_if(screens_, [display](const Screen& screen) { return screen.displayID == display; });
}

void SimulatedDisplays::setImage(DisplayID display, std::optional<platform::Image> image) {
  images_[display] = std::move(image);
}

const Screen* SimulatedDisplays::find(DisplayID display) const {
  const auto found = std::ranges::find(screens_, display, &Screen::displayID);
  return found == screens_.end() ? nullptr : &*found;
}

Rect SimulatedDisplays::bounds(DisplayID display) const {
  const Screen* screen = find(display);
  if (!screen) return {};
  const Rect& frame = screen->frame;
  return {{frame.minX(), screens_[0].frame.maxY() - frame.maxY()}, frame.size};
}

std::optional<platform::Image> SimulatedDisplays::createImage(DisplayID display) {
  snapshots.push_back({display, dispatcher_.isMainThread(), windows_.topmost() != nullptr});
  const Screen* screen = find(display);
  if (!screen || !accessGranted) return std::nullopt;
  if (const auto set = images_.find(display); set != images_.end()) return set->second;
  return coordinateImage(
      static_cast<int>(std::lround(screen->frame.size.width * screen->backingScaleFactor)),
      static_cast<int>(std::lround(screen->frame.size.height * screen->backingScaleFactor)));
}

}  // namespace lumiscan::testing
