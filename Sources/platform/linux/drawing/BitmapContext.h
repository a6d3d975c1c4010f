#pragma once

#include <memory>

#include "platform/BitmapContext.h"

namespace lumiscan::desktop {

/// Draws with Cairo into premultiplied 32-bit ARGB. Fonts are those that fontconfig finds; a character
/// that the chosen one lacks shows as its box for missing characters.
class CairoBitmapContext : public platform::BitmapContext {
 public:
  static std::unique_ptr<CairoBitmapContext> create(int width, int height);
  ~CairoBitmapContext() override;

  void stroke(const platform::BezierPath& path, platform::Color color) override;
  void fill(const platform::BezierPath& path, platform::Color color) override;
  void drawSymbol(std::string_view, const platform::Rect&, platform::Color) override {}
  platform::Size sizeOf(std::string_view text, const platform::TextAttributes& attributes) override;
  void draw(std::string_view text, platform::Point origin,
            const platform::TextAttributes& attributes) override;
  void drawLine(std::string_view text, platform::Point baseline,
                const platform::TextAttributes& attributes) override;
  platform::Image makeImage() override;

 private:
  struct Canvas;
  explicit CairoBitmapContext(std::unique_ptr<Canvas> canvas);

  std::unique_ptr<Canvas> canvas_;
};

}  // namespace lumiscan::desktop
