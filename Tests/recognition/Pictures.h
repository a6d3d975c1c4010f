#pragma once

#include <ZXing/BarcodeFormat.h>
#include <ZXing/CharacterSet.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Graphics.h"
#include "platform/Image.h"

namespace lumiscan::desktop {

/// How a picture of text looks.
struct TextStyle {
  double size = 16;  ///< Points, which are pixels here.
  platform::Color ink = platform::Color::black();
  platform::Color ground = platform::Color::white();
  platform::Font::Design design = platform::Font::Design::sansSerif;
};

/// Lines of text below each other with a margin around them.
platform::Image pictureOf(const std::vector<std::string>& lines, const TextStyle& style = {});

/// Hills of colour in small steps, on which lines of text lie whose letters have an outline, or a shadow
/// below.
platform::Image pictureWithText(const std::vector<std::string>& lines, double size, platform::Color color,
                                bool outlined);

/// A text that stands in a row with others.
struct RowText {
  std::string text;
  double size;
  double before = 0;  ///< Pixels of space.
  double up = 0;      ///< So many pixels above the baseline of the others.
};

/// Texts of several sizes from left to right.
platform::Image rowPicture(const std::vector<RowText>& texts);

/// The same pixels with other formats and row lengths; what is added is noise.
platform::Image asXrgb(const platform::Image& image);
platform::Image withLongRows(const platform::Image& image);

/// A code as the library writes it, `module` pixels a module, with its quiet zone.
platform::Image codePicture(ZXing::BarcodeFormat format, const std::string& payload, int module = 3,
                            ZXing::CharacterSet characters = ZXing::CharacterSet::Unknown);

/// A white page on which pictures are laid.
class Page {
 public:
  Page(int width, int height);
  /// `origin` in pixels from the top left.
  Page& lay(const platform::Image& picture, int x, int y);
  platform::Image image() const;

 private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
  }

  int width_;
  int height_;
  std::vector<std::uint32_t> pixels_;
};

platform::Image invertedPicture(const platform::Image& image);
platform::Image quarterTurned(const platform::Image& image);

}  // namespace lumiscan::desktop
