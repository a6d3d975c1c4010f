#pragma once

#include <xcb/xcb.h>

#include <memory>
#include <mutex>
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

/// What a part of the X screen showed at one moment. It stays on the server until its pixels are asked for.
/// Any thread.
class FrozenDesktop {
 public:
  /// Of what `pixels`, whole ones on the X screen, shows now.
  FrozenDesktop(std::shared_ptr<Connection> connection, const platform::Rect& pixels);

  /// Of its size, in the depth of the screen; lives as long as this object.
  xcb_pixmap_t pixmap() const { return pixmap_.id(); }
  /// The pixels of the X screen that it shows.
  const platform::Rect& pixels() const { return pixels_; }

  /// Whether its connection is broken, as where memory was too short for an answer: then so is all of this.
  bool isLost() const { return xcb_connection_has_error(connection_->get()) != 0; }

  /// All of it; the first call fetches it. Nothing when that fails.
  std::optional<platform::Image> image() const;
  /// A part of it: whole pixels from its own top left. Nothing when that fails.
  std::optional<platform::Image> part(const platform::Rect& rect) const;

 private:
  std::shared_ptr<Connection> connection_;
  platform::Rect pixels_;
  Pixmap pixmap_;
  mutable std::mutex mutex_;
  mutable std::optional<platform::Image> image_;
};

}  // namespace lumiscan::desktop::x11
