#pragma once

#include <memory>
#include <optional>

#include "platform/Geometry.h"
#include "platform/Image.h"
#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

/// A pixmap on the server, freed with this object.
class Pixmap {
 public:
  /// Of undefined content, in the depth of the screen.
  Pixmap(std::shared_ptr<Connection> connection, int width, int height);
  ~Pixmap();
  Pixmap(const Pixmap&) = delete;
  Pixmap& operator=(const Pixmap&) = delete;

  xcb_pixmap_t id() const { return id_; }

 private:
  std::shared_ptr<Connection> connection_;
  xcb_pixmap_t id_;
};

/// What a part of the X screen showed at one moment, here and on the server.
struct FrozenDesktop {
  platform::Image image;
  std::shared_ptr<const Pixmap> pixmap;
};

/// As `takeSnapshot`, with the same picture on the server.
std::optional<FrozenDesktop> freeze(const std::shared_ptr<Connection>& connection,
                                    const platform::Rect& pixels);

/// What a part of the X screen shows now, without the cursor. `pixels` is on the X screen: whole pixels,
/// origin at the top left, y downwards. Any thread. Nothing when the server refuses or keeps its pixels in
/// a form that is not known here.
///
/// Where the server shares memory with us it writes straight into the image's memory: one copy in all.
std::optional<platform::Image> takeSnapshot(const Connection& connection, const platform::Rect& pixels);

}  // namespace lumiscan::desktop::x11
