#include "platform/linux/drawing/BitmapContext.h"

#include <cairo-ft.h>
#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <numbers>
#include <string>
#include <utility>

namespace lumiscan::desktop {

namespace {

using platform::BezierPath;
using platform::Color;
using platform::Font;
using platform::FontWeight;
using platform::Point;
using platform::Rect;
using platform::Size;
using platform::TextAttributes;

struct Release {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_font_face_t* face) const { cairo_font_face_destroy(face); }
  void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};

using FontFace = std::unique_ptr<cairo_font_face_t, Release>;
using FontOptions = std::unique_ptr<cairo_font_options_t, Release>;

int fontconfigWeight(FontWeight weight) {
  switch (weight) {
    case FontWeight::regular:
      return FC_WEIGHT_REGULAR;
    case FontWeight::medium:
      return FC_WEIGHT_MEDIUM;
    case FontWeight::semibold:
      return FC_WEIGHT_DEMIBOLD;
    case FontWeight::bold:
      return FC_WEIGHT_BOLD;
  }
  return FC_WEIGHT_REGULAR;
}

void addFamily(FcPattern* pattern, const char* family) {
  FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
}

/// The installed face that comes closest.
FontFace chooseFace(Font::Design design, FontWeight weight) {
  const std::unique_ptr<FcPattern, Release> wanted(FcPatternCreate());
  switch (design) {
    case Font::Design::sansSerif:
      // Faces of Helvetica's design and widths, before what fontconfig would take for the name alone.
      for (const char* family : {"Liberation Sans", "Nimbus Sans", "Helvetica", "Arial"})
        addFamily(wanted.get(), family);
      addFamily(wanted.get(), "sans-serif");
      break;
    case Font::Design::monospaced:
      addFamily(wanted.get(), "monospace");
      break;
    case Font::Design::system:
    case Font::Design::systemMonospacedDigits:
      addFamily(wanted.get(), "sans-serif");
      break;
  }
  FcPatternAddInteger(wanted.get(), FC_WEIGHT, fontconfigWeight(weight));
  FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
  FcDefaultSubstitute(wanted.get());
  FcResult result = FcResultNoMatch;
  const std::unique_ptr<FcPattern, Release> found(FcFontMatch(nullptr, wanted.get(), &result));
  // Without any font Cairo draws with its own built-in one.
  if (!found)
    return FontFace(cairo_toy_font_face_create("", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL));
  return FontFace(cairo_ft_font_face_create_for_pattern(found.get()));
}

}  // namespace

struct CairoBitmapContext::Canvas {
  std::unique_ptr<cairo_surface_t, Release> surface;
  std::unique_ptr<cairo_t, Release> cairo;
  std::map<std::pair<Font::Design, FontWeight>, FontFace> faces;

  void setColor(Color color) {
    cairo_set_source_rgba(cairo.get(), color.red, color.green, color.blue, color.alpha);
  }

  void setFont(const Font& font) {
    FontFace& face = faces[{font.design, font.weight}];
    if (!face) face = chooseFace(font.design, font.weight);
    cairo_set_font_face(cairo.get(), face.get());
    // The context's y axis points up; the glyphs' own points down.
    cairo_matrix_t upright;
    cairo_matrix_init_scale(&upright, font.size, -font.size);
    cairo_set_font_matrix(cairo.get(), &upright);
  }

  void addShapes(const BezierPath& path) {
    cairo_t* const c = cairo.get();
    for (const auto& rounded : path.roundedRects) addRoundedRect(rounded.rect, rounded.radius);
    for (const Rect& oval : path.ovals) {
      if (!(oval.size.width > 0) || !(oval.size.height > 0)) continue;
      cairo_save(c);
      cairo_translate(c, oval.midX(), oval.midY());
      cairo_scale(c, oval.size.width / 2, oval.size.height / 2);
      cairo_new_sub_path(c);
      cairo_arc(c, 0, 0, 1, 0, 2 * std::numbers::pi);
      cairo_close_path(c);
      cairo_restore(c);
    }
  }

  void addRoundedRect(const Rect& rect, double wantedRadius) {
    cairo_t* const c = cairo.get();
    const double radius = std::clamp(wantedRadius, 0.0, std::min(rect.size.width, rect.size.height) / 2);
    if (!(radius > 0)) {
      cairo_rectangle(c, rect.minX(), rect.minY(), rect.size.width, rect.size.height);
      return;
    }
    constexpr double quarter = std::numbers::pi / 2;
    cairo_new_sub_path(c);
    cairo_arc(c, rect.maxX() - radius, rect.minY() + radius, radius, -quarter, 0);
    cairo_arc(c, rect.maxX() - radius, rect.maxY() - radius, radius, 0, quarter);
    cairo_arc(c, rect.minX() + radius, rect.maxY() - radius, radius, quarter, 2 * quarter);
    cairo_arc(c, rect.minX() + radius, rect.minY() + radius, radius, 2 * quarter, 3 * quarter);
    cairo_close_path(c);
  }
};

CairoBitmapContext::CairoBitmapContext(std::unique_ptr<Canvas> canvas) : canvas_(std::move(canvas)) {}
CairoBitmapContext::~CairoBitmapContext() = default;

std::unique_ptr<CairoBitmapContext> CairoBitmapContext::create(int width, int height) {
  if (width <= 0 || height <= 0) return nullptr;
  auto canvas = std::make_unique<Canvas>();
  canvas->surface.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
  canvas->cairo.reset(cairo_create(canvas->surface.get()));
  cairo_t* const cairo = canvas->cairo.get();
  if (cairo_status(cairo) != CAIRO_STATUS_SUCCESS) return nullptr;
  // The one place where y is turned upwards.
  cairo_translate(cairo, 0, height);
  cairo_scale(cairo, 1, -1);
  // The same pixels on every machine: no subpixel colours, and widths that don't depend on hinting.
  const FontOptions options(cairo_font_options_create());
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  cairo_set_font_options(cairo, options.get());
  return std::unique_ptr<CairoBitmapContext>(new CairoBitmapContext(std::move(canvas)));
}

void CairoBitmapContext::stroke(const BezierPath& path, Color color) {
  cairo_t* const cairo = canvas_->cairo.get();
  cairo_new_path(cairo);
  for (const auto& [from, to] : path.segments) {
    cairo_move_to(cairo, from.x, from.y);
    cairo_line_to(cairo, to.x, to.y);
  }
  canvas_->addShapes(path);
  canvas_->setColor(color);
  cairo_set_line_width(cairo, path.lineWidth);
  cairo_set_line_cap(cairo,
                     path.lineCap == platform::LineCap::round ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
  cairo_stroke(cairo);
}

void CairoBitmapContext::fill(const BezierPath& path, Color color) {
  cairo_new_path(canvas_->cairo.get());
  canvas_->addShapes(path);
  canvas_->setColor(color);
  cairo_fill(canvas_->cairo.get());
}

Size CairoBitmapContext::sizeOf(std::string_view text, const TextAttributes& attributes) {
  canvas_->setFont(attributes.font);
  cairo_text_extents_t line;
  cairo_text_extents(canvas_->cairo.get(), std::string(text).c_str(), &line);
  cairo_font_extents_t font;
  cairo_font_extents(canvas_->cairo.get(), &font);
  return {line.x_advance, font.ascent + font.descent};
}

void CairoBitmapContext::draw(std::string_view text, Point origin, const TextAttributes& attributes) {
  canvas_->setFont(attributes.font);
  cairo_font_extents_t font;
  cairo_font_extents(canvas_->cairo.get(), &font);
  drawLine(text, {origin.x, origin.y + font.descent}, attributes);
}

void CairoBitmapContext::drawLine(std::string_view text, Point baseline, const TextAttributes& attributes) {
  canvas_->setFont(attributes.font);
  canvas_->setColor(attributes.foregroundColor);
  cairo_move_to(canvas_->cairo.get(), baseline.x, baseline.y);
  cairo_show_text(canvas_->cairo.get(), std::string(text).c_str());
}

platform::Image CairoBitmapContext::makeImage() {
  cairo_surface_t* const surface = canvas_->surface.get();
  cairo_surface_flush(surface);
  const int width = cairo_image_surface_get_width(surface);
  const int height = cairo_image_surface_get_height(surface);
  const std::ptrdiff_t bytesPerRow = cairo_image_surface_get_stride(surface);
  const auto size = static_cast<std::size_t>(bytesPerRow) * static_cast<std::size_t>(height);
  std::shared_ptr<std::byte[]> copy(new std::byte[size]);
  std::memcpy(copy.get(), cairo_image_surface_get_data(surface), size);
  return {width, height, bytesPerRow, platform::PixelFormat::argbPremultiplied,
          std::shared_ptr<const std::byte>(copy, copy.get())};
}

}  // namespace lumiscan::desktop
