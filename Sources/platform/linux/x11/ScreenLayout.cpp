#include "platform/linux/x11/ScreenLayout.h"

#include <algorithm>
#include <cmath>

namespace lumiscan::desktop::x11 {

using platform::DisplayID;
using platform::Point;
using platform::Rect;

ScreenLayout::ScreenLayout(std::vector<Monitor> monitors) : monitors_(std::move(monitors)) {
  std::stable_partition(monitors_.begin(), monitors_.end(), [](const Monitor& m) { return m.isPrimary; });
  std::vector<Monitor> distinct;
  for (Monitor& monitor : monitors_) {
    const auto showsTheSame = [&monitor](const Monitor& m) { return m.pixels == monitor.pixels; };
    if (std::none_of(distinct.begin(), distinct.end(), showsTheSame)) distinct.push_back(std::move(monitor));
  }
  monitors_ = std::move(distinct);
}

DisplayID ScreenLayout::displayID(const std::string& outputName) {
  // FNV-1a. 0 stands for no display.
  DisplayID hash = 2166136261U;
  for (const char c : outputName) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  return hash == 0 ? 1 : hash;
}

const Monitor* ScreenLayout::find(DisplayID display) const {
  const auto found = std::find_if(monitors_.begin(), monitors_.end(),
                                  [display](const Monitor& m) { return displayID(m.name) == display; });
  return found == monitors_.end() ? nullptr : &*found;
}

DisplayID ScreenLayout::mainDisplayID() const {
  return monitors_.empty() ? 0 : displayID(monitors_.front().name);
}

Rect ScreenLayout::boundsOf(const Monitor& monitor) const {
  const Point main = monitors_.front().pixels.origin;
  const Rect& pixels = monitor.pixels;
  return {{pixels.origin.x - main.x, pixels.origin.y - main.y},
          {pixels.size.width / monitor.scale, pixels.size.height / monitor.scale}};
}

Rect ScreenLayout::upwards(const Rect& rect) const {
  const double mainHeight = boundsOf(monitors_.front()).size.height;
  return {{rect.origin.x, mainHeight - rect.maxY()}, rect.size};
}

Rect ScreenLayout::bounds(DisplayID display) const {
  const Monitor* monitor = find(display);
  return monitor ? boundsOf(*monitor) : Rect{};
}

std::optional<Rect> ScreenLayout::pixels(DisplayID display) const {
  const Monitor* monitor = find(display);
  if (!monitor) return std::nullopt;
  return monitor->pixels;
}

std::vector<platform::Screen> ScreenLayout::screens() const {
  std::vector<platform::Screen> screens;
  for (const Monitor& monitor : monitors_) {
    const Rect bounds = boundsOf(monitor);
    const Rect& free = monitor.workArea.value_or(monitor.pixels);
    const Rect visible{{bounds.origin.x + (free.origin.x - monitor.pixels.origin.x) / monitor.scale,
                        bounds.origin.y + (free.origin.y - monitor.pixels.origin.y) / monitor.scale},
                       {free.size.width / monitor.scale, free.size.height / monitor.scale}};
    screens.push_back({displayID(monitor.name), upwards(bounds), upwards(visible), monitor.scale});
  }
  return screens;
}

Point mouseInPixel(double scale) {
  // The middle of the pixel or a border of it. Of a screen, the left and the lower edge count as on it.
  const bool odd = std::fmod(std::floor(scale), 2) == 1;
  return odd ? Point{0.5, 0.5} : Point{0, 1};
}

Point ScreenLayout::mouseLocation(Point pixel) const {
  if (monitors_.empty()) return pixel;
  const auto distance = [pixel](const Monitor& m) {
    const double dx = std::max({m.pixels.minX() - pixel.x, 0.0, pixel.x - m.pixels.maxX() + 1});
    const double dy = std::max({m.pixels.minY() - pixel.y, 0.0, pixel.y - m.pixels.maxY() + 1});
    return std::hypot(dx, dy);
  };
  const Monitor& nearest = *std::min_element(
      monitors_.begin(), monitors_.end(),
      [&distance](const Monitor& a, const Monitor& b) { return distance(a) < distance(b); });
  const Point origin = boundsOf(nearest).origin;
  const Point inPixel = mouseInPixel(nearest.scale);
  const double x = origin.x + (pixel.x - nearest.pixels.origin.x + inPixel.x) / nearest.scale;
  const double y = origin.y + (pixel.y - nearest.pixels.origin.y + inPixel.y) / nearest.scale;
  return {x, boundsOf(monitors_.front()).size.height - y};
}

std::optional<ScreenLayout::Place> ScreenLayout::place(const Rect& globalRect) const {
  for (const Monitor& monitor : monitors_) {
    const Rect frame = upwards(boundsOf(monitor));
    if (!platform::contains(frame, {globalRect.midX(), globalRect.midY()})) continue;
    Place place{displayID(monitor.name), monitor.pixels, monitor.scale, globalRect == frame};
    if (place.coversDisplay) return place;
    const Point origin = monitor.pixels.origin;
    place.pixels = {{origin.x + std::round((globalRect.minX() - frame.minX()) * monitor.scale),
                     origin.y + std::round((frame.maxY() - globalRect.maxY()) * monitor.scale)},
                    {std::round(globalRect.size.width * monitor.scale),
                     std::round(globalRect.size.height * monitor.scale)}};
    return place;
  }
  return std::nullopt;
}

}  // namespace lumiscan::desktop::x11
