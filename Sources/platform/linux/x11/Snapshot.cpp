#include "platform/linux/x11/Snapshot.h"

#include <sys/mman.h>
#include <unistd.h>
#include <xcb/shm.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
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

/// Memory for large pictures: in large pages where the system has them, which are a fraction of the work, and
/// given back to it as soon as it is freed. Null when there is none.
std::shared_ptr<std::byte> allocated(std::size_t byteCount) {
  constexpr std::size_t largePage = std::size_t{2} << 20;
  // Room to begin at a large page.
  const std::size_t size = byteCount + largePage;
  void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  const auto address = reinterpret_cast<std::uintptr_t>(memory);
  auto* const pixels = static_cast<std::byte*>(memory) + (largePage - address % largePage) % largePage;
  madvise(pixels, byteCount, MADV_HUGEPAGE);
  return {pixels, [memory, size](std::byte*) { munmap(memory, size); }};
}

/// Memory that the server writes to.
class SharedMemory {
 public:
  SharedMemory(xcb_connection_t* connection, std::size_t byteCount)
      : connection_(connection), size_(byteCount) {
    const int descriptor = memfd_create("lumiscan-snapshot", MFD_CLOEXEC);
    if (descriptor < 0) return;
    void* memory = MAP_FAILED;
    if (ftruncate(descriptor, static_cast<off_t>(byteCount)) == 0)
      memory = mmap(nullptr, byteCount, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, descriptor, 0);
    if (memory == MAP_FAILED) {
      close(descriptor);
      return;
    }
    bytes_ = static_cast<const std::byte*>(memory);
    // The descriptor is the request's: it is closed once sent. A server on another machine refuses it.
    const xcb_shm_seg_t segment = xcb_generate_id(connection);
    const auto attach = xcb_shm_attach_fd_checked(connection, segment, descriptor, 0);
    const Reply<xcb_generic_error_t> error(xcb_request_check(connection, attach));
    if (!error) segment_ = segment;
  }
  ~SharedMemory() {
    if (segment_) xcb_shm_detach(connection_, *segment_);
    if (bytes_) munmap(const_cast<std::byte*>(bytes_), size_);
  }
  SharedMemory(const SharedMemory&) = delete;
  SharedMemory& operator=(const SharedMemory&) = delete;

  /// Nothing when the server can't write here.
  std::optional<xcb_shm_seg_t> segment() const { return segment_; }
  const std::byte* bytes() const { return bytes_; }

 private:
  xcb_connection_t* connection_;
  std::size_t size_;
  const std::byte* bytes_ = nullptr;
  std::optional<xcb_shm_seg_t> segment_;
};

std::optional<Image> sharedMemorySnapshot(const Connection& connection, xcb_drawable_t drawable,
                                          const PixelArea& area) {
  // Strips small enough to stay in the processor's cache, and enough of them to keep the server busy.
  constexpr std::size_t stripBytes = std::size_t{1} << 19;
  constexpr int stripCount = 4;
  xcb_connection_t* const x = connection.get();
  const auto* extension = xcb_get_extension_data(x, &xcb_shm_id);
  if (!extension || !extension->present) return std::nullopt;
  const int rowsAtATime =
      std::clamp(static_cast<int>(stripBytes / area.bytesPerRow()), 1, static_cast<int>(area.height));
  const std::size_t strip = area.bytesPerRow() * static_cast<std::size_t>(rowsAtATime);
  const SharedMemory shared(x, stripCount * strip);
  const auto pixels = allocated(area.byteCount());
  if (!shared.segment() || !pixels) return std::nullopt;

  const ServerGrab grab(x);
  const auto rowsFrom = [&](int y) { return std::min(rowsAtATime, area.height - y); };
  const auto offset = [&](int y) { return strip * static_cast<std::size_t>(y / rowsAtATime % stripCount); };
  const auto request = [&](int y) {
    return xcb_shm_get_image(x, drawable, area.x, static_cast<std::int16_t>(area.y + y), area.width,
                             static_cast<std::uint16_t>(rowsFrom(y)), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP,
                             *shared.segment(), static_cast<std::uint32_t>(offset(y)));
  };
  std::deque<xcb_shm_get_image_cookie_t> requested;
  int next = 0;
  bool complete = true;
  for (int y = 0; y < area.height; y += rowsAtATime) {
    for (; next < area.height && requested.size() < stripCount; next += rowsAtATime)
      requested.push_back(request(next));
    const Reply<xcb_shm_get_image_reply_t> answer(xcb_shm_get_image_reply(x, requested.front(), nullptr));
    requested.pop_front();
    if (!answer) complete = false;
    std::memcpy(pixels.get() + static_cast<std::size_t>(y) * area.bytesPerRow(), shared.bytes() + offset(y),
                area.bytesPerRow() * static_cast<std::size_t>(rowsFrom(y)));
  }
  if (!complete) return std::nullopt;
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

}  // namespace

std::optional<Image> takeSnapshot(const Connection& connection, xcb_drawable_t drawable,
                                  const platform::Rect& pixels) {
  if (!hasKnownPixels(connection)) return std::nullopt;
  const PixelArea area{static_cast<std::int16_t>(pixels.origin.x), static_cast<std::int16_t>(pixels.origin.y),
                       static_cast<std::uint16_t>(pixels.size.width),
                       static_cast<std::uint16_t>(pixels.size.height)};
  if (area.width == 0 || area.height == 0) return std::nullopt;
  // Little is sent faster than memory is shared.
  constexpr std::size_t little = std::size_t{1} << 16;
  if (area.byteCount() > little)
    if (auto image = sharedMemorySnapshot(connection, drawable, area)) return image;
  return sentSnapshot(connection, drawable, area);
}

}  // namespace lumiscan::desktop::x11
