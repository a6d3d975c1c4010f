#pragma once

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Graphics.h"
#include "support/Printing.h"

namespace lumiscan::testing {

/// What was drawn, in order.
struct Drawing {
  /// A line an operation: "stroke COLOUR WIDTH SHAPES", "fill COLOUR SHAPES", "text COLOUR FONT at POINT:
  /// TEXT" or "symbol COLOUR RECTANGLE: NAME".
  std::vector<std::string> operations;
  std::string content;  ///< The symbols and the texts alone: "SYMBOL TEXT / TEXT".
};

/// One line, its parts parted by spaces.
template <typename... Parts>
std::string line(const Parts&... parts) {
  std::ostringstream stream;
  std::string_view gap;
  ((stream << gap << parts, gap = " "), ...);
  return stream.str();
}

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
    drawing.operations.push_back(line("stroke", color, path.lineWidth, path));
  }
  void fill(const platform::BezierPath& path, platform::Color color) override {
    drawing.operations.push_back(line("fill", color, path));
  }
  platform::Size sizeOf(std::string_view text, const platform::TextAttributes&) override {
    return simulatedTextSize(text);
  }
  void draw(std::string_view text, platform::Point origin,
            const platform::TextAttributes& attributes) override {
    drawing.operations.push_back(line("text", attributes.foregroundColor, attributes.font, "at", origin) +
                                 ": " + std::string(text));
    drawing.content += (hasText_ ? " / " : "") + std::string(text);
    hasText_ = true;
  }
  void drawSymbol(std::string_view name, const platform::Rect& rect, platform::Color color) override {
    drawing.operations.push_back(line("symbol", color, rect) + ": " + std::string(name));
    drawing.content += std::string(name) + ' ';
  }

  Drawing drawing;

 private:
  bool hasText_ = false;
};

using RecordingGraphicsContext = Recording<platform::GraphicsContext>;

}  // namespace lumiscan::testing
