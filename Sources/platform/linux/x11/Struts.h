#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <functional>
#include <vector>

#include "platform/Geometry.h"

namespace lumiscan::desktop::x11 {

/// What the desktop's bars and docks keep for themselves of the X screen's edges. The toolkit knows it for
/// one monitor only. On the toolkit's connection, whose event loop tells of changes; made after the
/// application object. Main thread.
class Struts : private QAbstractNativeEventFilter {
 public:
  explicit Struts(xcb_connection_t* connection);
  ~Struts() override;
  Struts(const Struts&) = delete;
  Struts& operator=(const Struts&) = delete;

  /// What is left of a monitor. Pixels of the X screen, origin at its top left, y downwards.
  platform::Rect workArea(const platform::Rect& monitor) const;

  /// Called after a change.
  std::function<void()> changed;

 private:
  enum class Edge { left, right, top, bottom };
  /// A strip along an edge of the X screen, in pixels.
  struct Strip {
    Edge edge;
    double end;          ///< How far from the X screen's left or top it ends.
    double first, last;  ///< Along the edge, both included.
    bool operator==(const Strip&) const = default;
  };

  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  std::vector<Strip> read() const;

  xcb_connection_t* connection_;
  xcb_window_t root_;
  xcb_atom_t clients_, workArea_, strut_, partial_;
  std::vector<Strip> strips_;
};

}  // namespace lumiscan::desktop::x11
