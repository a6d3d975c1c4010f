// Prepares arbitrary images for the text engine: ink, lines and the pictures of the lines.

#include <cstdlib>

#include "fuzz/ImageFromBytes.h"
#include "platform/linux/recognition/ImagePreparation.h"
#include "platform/linux/recognition/LineImage.h"
#include "platform/linux/recognition/TextLayout.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumiscan;
  constexpr std::size_t mostPixels = 40'000;
  const platform::Image image = fuzzing::imageFromBytes({data, size}, mostPixels);
  const desktop::GreyBitmap ink = desktop::inkOf(image);
  for (const desktop::TextLine& line : desktop::findTextLines(ink, desktop::Characters::wide)) {
    if (line.glyphs.empty()) std::abort();
    for (const desktop::Glyph& glyph : line.glyphs)
      if (!ink.contains(glyph.box.left, glyph.box.top) || !ink.contains(glyph.box.right, glyph.box.bottom))
        std::abort();
    desktop::drawLine(ink, line, line.glyphs);
  }
  return 0;
}
