#include "platform/linux/x11/FrozenDesktop.h"

#include <cstdint>
#include <utility>

#include "platform/linux/x11/Snapshot.h"

namespace lumiscan::desktop::x11 {

Pixmap::Pixmap(std::shared_ptr<Connection> connection, int width, int height)
    : connection_(std::move(connection)), id_(xcb_generate_id(connection_->get())) {
  const xcb_screen_t& screen = connection_->screen();
  xcb_create_pixmap(connection_->get(), screen.root_depth, id_, screen.root,
                    static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height));
}

Pixmap::~Pixmap() {
  xcb_free_pixmap(connection_->get(), id_);
  xcb_flush(connection_->get());
}

FrozenDesktop::FrozenDesktop(std::shared_ptr<Connection> connection, const platform::Rect& pixels)
    : connection_(connection),
      pixels_(pixels),
      pixmap_(std::move(connection), static_cast<int>(pixels.size.width),
              static_cast<int>(pixels.size.height)) {
  xcb_connection_t* const x = connection_->get();
  const xcb_gcontext_t gc = xcb_generate_id(x);
  const std::uint32_t values[] = {XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS, 0};
  xcb_create_gc(x, gc, connection_->root(), XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, values);
  // Checked, so that it is there for other connections when this returns.
  const auto copy = xcb_copy_area_checked(
      x, connection_->root(), pixmap_.id(), gc, static_cast<std::int16_t>(pixels.origin.x),
      static_cast<std::int16_t>(pixels.origin.y), 0, 0, static_cast<std::uint16_t>(pixels.size.width),
      static_cast<std::uint16_t>(pixels.size.height));
  const Reply<xcb_generic_error_t> error(xcb_request_check(x, copy));
  xcb_free_gc(x, gc);
}

std::optional<platform::Image> FrozenDesktop::image() const {
  const std::lock_guard lock(mutex_);
  if (!image_) image_ = takeSnapshot(*connection_, pixmap_.id(), {{0, 0}, pixels_.size});
  return image_;
}

std::optional<platform::Image> FrozenDesktop::part(const platform::Rect& rect) const {
  // Whoever fetches all of it needs a while.
  const std::unique_lock lock(mutex_, std::try_to_lock);
  if (lock && image_) return image_->cropped(rect);
  return takeSnapshot(*connection_, pixmap_.id(), rect);
}

}  // namespace lumiscan::desktop::x11
