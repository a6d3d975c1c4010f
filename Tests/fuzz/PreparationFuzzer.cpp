// Prepares arbitrary images for the text engine: ink, letters on pictures, lines and the pictures of the
// lines; and holds a reading against the shapes of their ink.

#include <cstdlib>

#include "fuzz/ImageFromBytes.h"
#include "fuzz/Target.h"
#include "platform/linux/recognition/ImagePreparation.h"
#include "platform/linux/recognition/LineImage.h"
#include "platform/linux/recognition/PictureLetters.h"
#include "platform/linux/recognition/ShapeCorrections.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::fuzzing {

namespace {

void useLines(desktop::GreyBitmap ink, desktop::Characters characters) {
  for (const desktop::TextLine& line : desktop::findTextLines(ink, characters)) {
    require(!line.glyphs.empty());
    for (const desktop::Glyph& glyph : line.glyphs)
      require(ink.contains(glyph.box.left, glyph.box.top) && ink.contains(glyph.box.right, glyph.box.bottom));
    desktop::drawLine(ink, line, line.glyphs, {36, 0.3});
    desktop::LineShapes shapes(ink, line, line.glyphs);
    std::vector<desktop::Symbol> symbols(3, {"x", false, line.box, 50});
    correctByShape(symbols, shapes);
    require(symbols.size() <= 3 + line.glyphs.size());
  }
}

}  // namespace

void use(std::string_view input) {
  constexpr std::size_t mostPixels = 40'000;
  const platform::Image image = imageFromBytes(input, mostPixels);
  const desktop::Surfaces surfaces(image);
  const desktop::Grounds grounds(surfaces);
  const desktop::PictureLetters letters(surfaces, grounds);
  for (const std::uint32_t color : letters.colors())
    require(letters.ink(color, desktop::PictureLetters::Strokes::any).pixels.size() == surfaces.pixelCount());
  const desktop::GreyBitmap all = desktop::inkOf(surfaces, grounds);
  useLines(all, desktop::Characters::wide);
  useLines(all, desktop::Characters::alphabetic);
}

}  // namespace lumiscan::fuzzing
