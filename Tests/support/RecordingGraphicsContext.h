#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Graphics.h"

namespace lumiscan::testing {

/// What was drawn, in order.
struct DrawingOperation {
  enum class Kind { stroke, fill, text, symbol };
  Kind kind = Kind::stroke;
  platform::BezierPath path;  ///< Of strokes and fills.
  platform::Color color;      ///< Of a text, its foreground colour.
  std::string text;           ///< Of a symbol, its name.
  platform::Point origin;     ///< Of a text's box, or of its baseline when it was drawn as a line.
  platform::Font font;
  platform::Rect rect;  ///< Of a symbol.
};
using Drawing = std::vector<DrawingOperation>;

/// Text metrics in place of a font's: every character is as wide as the next.
inline constexpr double characterWidth = 7;
inline constexpr double lineHeight = 14;

inline platform::Size simulatedTextSize(std::string_view text) {
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  const auto characters =
      static_cast<double>(text.size()) - static_cast<double>(std::ranges::count_if(text, continues));
  return {characters * characterWidth, lineHeight};
}

/// A context of the kind `Base` that records instead of drawing.
template <typename Base>
class Recording : public Base {
 public:
  void stroke(const platform::BezierPath& path, platform::Color color) override {
    drawing.push_back({DrawingOperation::Kind::stroke, path, color, {}, {}, {}, {}});
  }
  void fill(const platform::BezierPath& path, platform::Color color) override {
    drawing.push_back({DrawingOperation::Kind::fill, path, color, {}, {}, {}, {}});
  }
  platform::Size sizeOf(std::string_view text, const platform::TextAttributes&) override {
    return simulatedTextSize(text);
  }
  void draw(std::string_view text, platform::Point origin,
            const platform::TextAttributes& attributes) override {
    drawing.push_back({DrawingOperation::Kind::text,
                       {},
                       attributes.foregroundColor,
                       std::string(text),
                       origin,
                       attributes.font,
                       {}});
  }
  void drawSymbol(std::string_view name, const platform::Rect& rect, platform::Color color) override {
    drawing.push_back({DrawingOperation::Kind::symbol, {}, color, std::string(name), {}, {}, rect});
  }

  Drawing drawing;
};

using RecordingGraphicsContext = Recording<platform::GraphicsContext>;

}  // namespace lumiscan::testing
