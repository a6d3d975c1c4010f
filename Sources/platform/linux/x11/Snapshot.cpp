#include "platform/linux/x11/Snapshot.h"

#include <sys/mman.h>
#include <unistd.h>
#include <xcb/shm.h>

#include <cstdint>
#include <memory>

namespace lumiscan::desktop::x11 {

namespace {

using platform::Image;
using platform::PixelFormat;

struct PixelArea {
  std::int16_t x;
  std::int16_t y;
  std::uint16_t width;
  std::uint16_t height;

  std::size_t bytesPerRow() const { return std::size_t{4} * width; }
  std::size_t byteCount() const { return bytesPerRow() * height; }
};

/// Whether the root window's pixels are what `PixelFormat::xrgb` says: 32 bits each in our byte order, with
/// 8 bits a colour in the usual places.
bool hasKnownPixels(const Connection& connection) {
  const xcb_setup_t* setup = xcb_get_setup(connection.get());
  const auto ourByteOrder =
      __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? XCB_IMAGE_ORDER_LSB_FIRST : XCB_IMAGE_ORDER_MSB_FIRST;
  if (setup->image_byte_order != ourByteOrder) return false;
  const xcb_screen_t& screen = connection.screen();
  for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem; xcb_format_next(&formats))
    if (formats.data->depth == screen.root_depth && formats.data->bits_per_pixel != 32) return false;
  for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem; xcb_depth_next(&depths))
    for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem; xcb_visualtype_next(&visuals))
      if (visuals.data->visual_id == screen.root_visual)
        return visuals.data->red_mask == 0xFF0000 && visuals.data->green_mask == 0xFF00 &&
               visuals.data->blue_mask == 0xFF;
  return false;
}

Image imageOf(const PixelArea& area, std::shared_ptr<const std::byte> pixels) {
  return Image(area.width, area.height, static_cast<std::ptrdiff_t>(area.bytesPerRow()), PixelFormat::xrgb,
               std::move(pixels));
}

/// Memory that the server may write to; null when there is none.
std::shared_ptr<const std::byte> mapped(int descriptor, std::size_t byteCount) {
  if (ftruncate(descriptor, static_cast<off_t>(byteCount)) != 0) return nullptr;
  void* memory = mmap(nullptr, byteCount, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  if (memory == MAP_FAILED) return nullptr;
  return {static_cast<const std::byte*>(memory),
          [byteCount](const std::byte* pixels) { munmap(const_cast<std::byte*>(pixels), byteCount); }};
}

std::optional<Image> sharedMemorySnapshot(const Connection& connection, xcb_drawable_t drawable,
                                          const PixelArea& area) {
  xcb_connection_t* const x = connection.get();
  const auto* extension = xcb_get_extension_data(x, &xcb_shm_id);
  if (!extension || !extension->present) return std::nullopt;
  const int descriptor = memfd_create("lumiscan-snapshot", MFD_CLOEXEC);
  if (descriptor < 0) return std::nullopt;
  const auto pixels = mapped(descriptor, area.byteCount());
  if (!pixels) {
    close(descriptor);
    return std::nullopt;
  }
  // The descriptor is the request's: it is closed once sent. A server on another machine refuses it.
  const xcb_shm_seg_t segment = xcb_generate_id(x);
  const auto attach = xcb_shm_attach_fd_checked(x, segment, descriptor, 0);
  const auto get = xcb_shm_get_image(x, drawable, area.x, area.y, area.width, area.height, ~0U,
                                     XCB_IMAGE_FORMAT_Z_PIXMAP, segment, 0);
  const Reply<xcb_generic_error_t> attachError(xcb_request_check(x, attach));
  const Reply<xcb_shm_get_image_reply_t> answer(xcb_shm_get_image_reply(x, get, nullptr));
  if (!attachError) xcb_shm_detach(x, segment);
  xcb_flush(x);
  if (!answer) return std::nullopt;
  return imageOf(area, pixels);
}

std::optional<Image> sentSnapshot(const Connection& connection, xcb_drawable_t drawable,
                                  const PixelArea& area) {
  const auto get = xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, area.x, area.y,
                                 area.width, area.height, ~0U);
  const std::shared_ptr<xcb_get_image_reply_t> answer(xcb_get_image_reply(connection.get(), get, nullptr),
                                                      FreeReply());
  if (!answer || static_cast<std::size_t>(xcb_get_image_data_length(answer.get())) < area.byteCount())
    return std::nullopt;
  const auto* bytes = reinterpret_cast<const std::byte*>(xcb_get_image_data(answer.get()));
  return imageOf(area, std::shared_ptr<const std::byte>(answer, bytes));
}

std::optional<Image> pictureOf(const Connection& connection, xcb_drawable_t drawable, const PixelArea& area) {
  if (auto image = sharedMemorySnapshot(connection, drawable, area)) return image;
  return sentSnapshot(connection, drawable, area);
}

/// Nothing for an area without pixels, or whose pixels are in a form that is not known here.
std::optional<PixelArea> readableArea(const Connection& connection, const platform::Rect& pixels) {
  if (!hasKnownPixels(connection)) return std::nullopt;
  const PixelArea area{static_cast<std::int16_t>(pixels.origin.x), static_cast<std::int16_t>(pixels.origin.y),
                       static_cast<std::uint16_t>(pixels.size.width),
                       static_cast<std::uint16_t>(pixels.size.height)};
  if (area.width == 0 || area.height == 0) return std::nullopt;
  return area;
}

}  // namespace

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

std::optional<FrozenDesktop> freeze(const std::shared_ptr<Connection>& connection,
                                    const platform::Rect& pixels) {
  const auto area = readableArea(*connection, pixels);
  if (!area) return std::nullopt;
  auto pixmap = std::make_shared<const Pixmap>(connection, area->width, area->height);
  xcb_connection_t* const x = connection->get();
  const xcb_gcontext_t gc = xcb_generate_id(x);
  const std::uint32_t values[] = {XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS, 0};
  xcb_create_gc(x, gc, connection->root(), XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, values);
  xcb_copy_area(x, connection->root(), pixmap->id(), gc, area->x, area->y, 0, 0, area->width, area->height);
  xcb_free_gc(x, gc);
  auto image = pictureOf(*connection, pixmap->id(), {0, 0, area->width, area->height});
  if (!image) return std::nullopt;
  return FrozenDesktop{*std::move(image), std::move(pixmap)};
}

std::optional<Image> takeSnapshot(const Connection& connection, const platform::Rect& pixels) {
  const auto area = readableArea(connection, pixels);
  return area ? pictureOf(connection, connection.root(), *area) : std::nullopt;
}

}  // namespace lumiscan::desktop::x11
