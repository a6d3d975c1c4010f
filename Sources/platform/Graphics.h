#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Geometry.h"

namespace lumiscan::platform {

/// An sRGB colour with straight alpha; every component from 0 to 1.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;

  static constexpr Color black() { return {0, 0, 0, 1}; }
  static constexpr Color white() { return {1, 1, 1, 1}; }
  static constexpr Color clear() { return {0, 0, 0, 0}; }
  constexpr Color withAlpha(double a) const { return {red, green, blue, a}; }
  friend bool operator==(const Color&, const Color&) = default;
};

enum class FontWeight { regular, medium, semibold, bold };

/// A font by what it is for; the desktop chooses the family.
struct Font {
  enum class Design {
    system,                  ///< The desktop's user-interface font.
    systemMonospacedDigits,  ///< The same with digits of one width.
    monospaced,              ///< The desktop's fixed-width font.
    sansSerif,               ///< A plain sans-serif font for drawing into bitmaps.
  };
  Design design = Design::system;
  double size = 13;  ///< Points.
  FontWeight weight = FontWeight::regular;
};

struct TextAttributes {
  Font font;
  Color foregroundColor = Color::black();
};

enum class LineCap { butt, round };

/// Lines and shapes to stroke or fill, in the coordinates of the context that draws them.
struct BezierPath {
  struct Segment {
    Point from;
    Point to;
  };
  struct RoundedRect {
    Rect rect;
    double radius = 0;
    /// Whether the corners flow into the sides, as those of panels do, rather than being quarters of circles.
    /// On a screen only: bitmaps in memory have quarters of circles.
    bool continuous = false;
  };

  std::vector<Segment> segments;
  std::vector<RoundedRect> roundedRects;  ///< Radius 0 for plain rectangles.
  std::vector<Rect> ovals;                ///< Each the oval that fits the rectangle.
  double lineWidth = 1;
  LineCap lineCap = LineCap::butt;

  static BezierPath rect(const Rect& rect);
  static BezierPath roundedRect(const Rect& rect, double radius);
  static BezierPath oval(const Rect& rect);
};

/// A surface that is drawn on. In points, origin at the bottom left, y upwards.
class GraphicsContext {
 public:
  virtual ~GraphicsContext() = default;

  virtual void stroke(const BezierPath& path, Color color) = 0;
  virtual void fill(const BezierPath& path, Color color) = 0;

  /// The size of one line of UTF-8 text: its advance and the height from descent to ascent.
  virtual Size sizeOf(std::string_view text, const TextAttributes& attributes) = 0;
  /// Draws one line of UTF-8 text whose box (see `sizeOf`) has its bottom-left corner at `origin`.
  virtual void draw(std::string_view text, Point origin, const TextAttributes& attributes) = 0;

  /// Draws one of the desktop's symbols, in one colour, as large as fits into the rectangle and in its
  /// middle. A name that the surface doesn't know draws nothing; bitmaps in memory know none.
  virtual void drawSymbol(std::string_view name, const Rect& rect, Color color) = 0;
};

}  // namespace lumiscan::platform
