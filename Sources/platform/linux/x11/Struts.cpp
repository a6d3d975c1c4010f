#include "platform/linux/x11/Struts.h"

#include <QCoreApplication>
#include <algorithm>
#include <limits>
#include <utility>

#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

namespace {

constexpr std::uint32_t mostValues = 65'536;  // Far more than a desktop has windows.

xcb_get_property_cookie_t request(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property) {
  return xcb_get_property(connection, 0, window, property, XCB_ATOM_ANY, 0, mostValues);
}

/// Empty where the window has gone or has no such property.
std::vector<std::uint32_t> answer(xcb_connection_t* connection, xcb_get_property_cookie_t cookie) {
  const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
  if (!reply || reply->format != 32) return {};
  const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {values, values + reply->value_len};
}

}  // namespace

Struts::Struts(xcb_connection_t* connection)
    : connection_(connection),
      root_(screenOf(connection).root),
      clients_(atom(connection, "_NET_CLIENT_LIST")),
      workArea_(atom(connection, "_NET_WORKAREA")),
      strut_(atom(connection, "_NET_WM_STRUT")),
      partial_(atom(connection, "_NET_WM_STRUT_PARTIAL")),
      strips_(read()) {
  QCoreApplication::instance()->installNativeEventFilter(this);
}

Struts::~Struts() {
  if (auto* application = QCoreApplication::instance()) application->removeNativeEventFilter(this);
}

std::vector<Struts::Strip> Struts::read() const {
  const Reply<xcb_get_geometry_reply_t> screen(
      xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, root_), nullptr));
  if (!screen) return {};
  struct Cookies {
    xcb_get_property_cookie_t partial, whole;
  };
  std::vector<Cookies> asked;
  for (const xcb_window_t window : answer(connection_, request(connection_, root_, clients_)))
    asked.push_back({request(connection_, window, partial_), request(connection_, window, strut_)});

  constexpr std::size_t edges = 4;
  std::vector<Strip> strips;
  for (const Cookies& cookies : asked) {
    const std::vector<std::uint32_t> partial = answer(connection_, cookies.partial);
    std::vector<std::uint32_t> values = answer(connection_, cookies.whole);
    if (partial.size() == 3 * edges) {
      values = partial;
    } else if (values.size() == edges) {
      // Along the whole edge.
      for (std::size_t i = 0; i < edges; ++i)
        values.insert(values.end(), {0, std::numeric_limits<std::uint32_t>::max()});
    } else {
      continue;
    }
    const double ends[edges] = {
        static_cast<double>(values[0]), screen->width - static_cast<double>(values[1]),
        static_cast<double>(values[2]), screen->height - static_cast<double>(values[3])};
    for (std::size_t i = 0; i < edges; ++i)
      if (values[i] > 0)
        strips.push_back({static_cast<Edge>(i), ends[i], static_cast<double>(values[edges + 2 * i]),
                          static_cast<double>(values[edges + 2 * i + 1])});
  }
  return strips;
}

platform::Rect Struts::workArea(const platform::Rect& monitor) const {
  double left = monitor.minX(), right = monitor.maxX(), top = monitor.minY(), bottom = monitor.maxY();
  for (const Strip& strip : strips_) {
    const bool upright = strip.edge == Edge::left || strip.edge == Edge::right;
    const auto isWithin = [&](double from, double to) { return strip.end > from && strip.end < to; };
    const auto runsAlong = [&](double from, double to) { return strip.first < to && strip.last >= from; };
    // A strip that ends on another monitor is the bar of that one.
    if (upright ? !isWithin(monitor.minX(), monitor.maxX()) || !runsAlong(monitor.minY(), monitor.maxY())
                : !isWithin(monitor.minY(), monitor.maxY()) || !runsAlong(monitor.minX(), monitor.maxX()))
      continue;
    switch (strip.edge) {
      case Edge::left:
        left = std::max(left, strip.end);
        break;
      case Edge::right:
        right = std::min(right, strip.end);
        break;
      case Edge::top:
        top = std::max(top, strip.end);
        break;
      case Edge::bottom:
        bottom = std::min(bottom, strip.end);
        break;
    }
  }
  return left < right && top < bottom ? platform::Rect{{left, top}, {right - left, bottom - top}} : monitor;
}

bool Struts::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (eventType != "xcb_generic_event_t") return false;
  const auto& event = *static_cast<xcb_generic_event_t*>(message);
  if ((event.response_type & 0x7F) != XCB_PROPERTY_NOTIFY) return false;
  const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
  // Window managers write their own list and area anew when a bar comes, goes or changes.
  if (property.window != root_ || (property.atom != clients_ && property.atom != workArea_)) return false;
  std::vector<Strip> strips = read();
  if (strips == strips_) return false;
  strips_ = std::move(strips);
  if (changed) changed();
  return false;
}

}  // namespace lumiscan::desktop::x11
