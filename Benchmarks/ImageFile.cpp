#include "ImageFile.h"

#include <cairo.h>

#include <memory>

namespace lumiscan::benchmark {

platform::Result<platform::Image> readPng(const std::filesystem::path& file) {
  const std::shared_ptr<cairo_surface_t> read(cairo_image_surface_create_from_png(file.c_str()),
                                              cairo_surface_destroy);
  // The library's own text for a file that is no PNG speaks of memory.
  if (cairo_surface_status(read.get()) != CAIRO_STATUS_SUCCESS)
    return platform::Error{"can't be read as a PNG image"};
  const int width = cairo_image_surface_get_width(read.get());
  const int height = cairo_image_surface_get_height(read.get());
  std::shared_ptr<cairo_surface_t> surface = read;
  const cairo_format_t format = cairo_image_surface_get_format(read.get());
  if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24) {
    surface.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height), cairo_surface_destroy);
    const std::shared_ptr<cairo_t> cairo(cairo_create(surface.get()), cairo_destroy);
    cairo_set_source_surface(cairo.get(), read.get(), 0, 0);
    cairo_paint(cairo.get());
  }
  cairo_surface_flush(surface.get());
  const auto* const pixels = reinterpret_cast<const std::byte*>(cairo_image_surface_get_data(surface.get()));
  if (!pixels) return platform::Error{cairo_status_to_string(cairo_surface_status(surface.get()))};
  const auto pixelFormat =
      format == CAIRO_FORMAT_RGB24 ? platform::PixelFormat::xrgb : platform::PixelFormat::argbPremultiplied;
  return platform::Image(width, height, cairo_image_surface_get_stride(surface.get()), pixelFormat,
                         std::shared_ptr<const std::byte>(surface, pixels));
}

}  // namespace lumiscan::benchmark
