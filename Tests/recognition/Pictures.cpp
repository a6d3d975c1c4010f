#include "Pictures.h"

#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "platform/linux/drawing/BitmapContext.h"

namespace lumiscan::desktop {

namespace {

using platform::Color;
using platform::Image;
using platform::PixelFormat;

constexpr std::uint32_t opaque = 0xFF000000;

/// An image whose pixels a function gives; rows are `spare` pixels longer than the image is wide.
Image imageOf(int width, int height, PixelFormat format, const std::function<std::uint32_t(int, int)>& pixel,
              int spare = 0) {
  const int stride = width + spare;
  std::shared_ptr<std::uint32_t[]> words(
      new std::uint32_t[static_cast<std::size_t>(stride) * static_cast<std::size_t>(height)]);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < stride; ++x)
      words[y * stride + x] = x < width ? pixel(x, y) : 0x9E3779B9U * static_cast<unsigned>(x + y);
  return {width, height, 4 * static_cast<std::ptrdiff_t>(stride), format,
          std::shared_ptr<const std::byte>(words, reinterpret_cast<const std::byte*>(words.get()))};
}

std::uint32_t pixelAt(const Image& image, int x, int y) {
  return reinterpret_cast<const std::uint32_t*>(image.row(y))[x];
}

}  // namespace

Image pictureOf(const std::vector<std::string>& lines, const TextStyle& style) {
  const platform::TextAttributes attributes{{style.design, style.size}, style.ink};
  const double lead = 1.4 * style.size;
  const double margin = style.size;
  double width = 0;
  const auto ruler = CairoBitmapContext::create(1, 1);
  for (const std::string& line : lines) width = std::max(width, ruler->sizeOf(line, attributes).width);
  const double height = lead * static_cast<double>(lines.size()) + 2 * margin;
  const auto context =
      CairoBitmapContext::create(static_cast<int>(width + 2 * margin), static_cast<int>(height));
  context->fill(platform::BezierPath::rect({{0, 0}, {10'000, 10'000}}), style.ground);
  double y = height - margin;
  for (const std::string& line : lines) context->draw(line, {margin, y -= lead}, attributes);
  return context->makeImage();
}

Image pictureWithText(const std::vector<std::string>& lines, double size, Color color, bool outlined) {
  const double width = 22 * size;
  const double height = (2 * static_cast<double>(lines.size()) + 1) * size;
  const auto context = CairoBitmapContext::create(static_cast<int>(width), static_cast<int>(height));
  constexpr int step = 4;
  for (int row = 0; row < height; row += step)
    for (int column = 0; column < width; column += step) {
      const double x = column;
      const double y = row;
      const double hill = 0.5 + 0.5 * std::sin(x / 31) * std::cos(y / 23);
      context->fill(platform::BezierPath::rect({{x, y}, {step, step}}),
                    {0.25 + 0.55 * hill, 0.6 - 0.3 * hill, 0.3 + 0.3 * std::sin(x / 17 + y / 29), 1});
    }
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const double y = height - 2 * static_cast<double>(i + 1) * size;
    const auto draw = [&](double right, double up, Color of) {
      context->draw(lines[i], {size + right, y + up}, {{platform::Font::Design::sansSerif, size}, of});
    };
    if (outlined)
      for (const double right : {-2.0, 0.0, 2.0})
        for (const double up : {-2.0, 0.0, 2.0}) draw(right, up, Color::black());
    else
      for (const double blur : {-1.0, 0.0, 1.0}) draw(blur, -1, {0, 0, 0, 0.6});
    draw(0, 0, color);
  }
  return context->makeImage();
}

Image rowPicture(const std::vector<RowText>& texts) {
  const auto context = CairoBitmapContext::create(600, 120);
  context->fill(platform::BezierPath::rect({{0, 0}, {600, 120}}), Color::white());
  double x = 16;
  for (const auto& [text, size, before, up] : texts) {
    const platform::TextAttributes attributes{{platform::Font::Design::sansSerif, size}, Color::black()};
    const platform::Size box = context->sizeOf(text, attributes);
    const double descent = 0.2 * box.height;
    context->draw(text, {x += before, 50 + up - descent}, attributes);
    x += box.width;
  }
  return context->makeImage();
}

Image asXrgb(const Image& image) {
  return imageOf(image.width(), image.height(), PixelFormat::xrgb, [&](int x, int y) {
    return (pixelAt(image, x, y) & 0xFFFFFF) | static_cast<std::uint32_t>(x * 37 + y * 11) << 24;
  });
}

Image withLongRows(const Image& image) {
  return imageOf(
      image.width(), image.height(), image.format(), [&](int x, int y) { return pixelAt(image, x, y); }, 13);
}

Image codePicture(ZXing::BarcodeFormat format, const std::string& payload, int module,
                  ZXing::CharacterSet characters) {
  const bool linear = ZXing::BarcodeFormats(ZXing::BarcodeFormat::LinearCodes).testFlag(format);
  const ZXing::BitMatrix bits = ZXing::MultiFormatWriter(format)
                                    .setMargin(linear ? 10 : 4)
                                    .setEncoding(characters)
                                    .encode(payload, 0, linear ? 30 : 0);
  const Image small = imageOf(bits.width(), bits.height(), PixelFormat::argbPremultiplied,
                              [&](int x, int y) { return bits.get(x, y) ? opaque : opaque | 0xFFFFFF; });
  return platform::enlarged(small, module);
}

Page::Page(int width, int height)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0xFFFFFFFF) {}

Page& Page::lay(const Image& picture, int left, int top) {
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x) pixels_.at(index(left + x, top + y)) = pixelAt(picture, x, y);
  return *this;
}

Image Page::image() const {
  return imageOf(width_, height_, PixelFormat::argbPremultiplied,
                 [&](int x, int y) { return pixels_[index(x, y)]; });
}

Image invertedPicture(const Image& image) {
  return imageOf(image.width(), image.height(), image.format(),
                 [&](int x, int y) { return pixelAt(image, x, y) ^ 0xFFFFFF; });
}

Image quarterTurned(const Image& image) {
  return imageOf(image.height(), image.width(), image.format(),
                 [&](int x, int y) { return pixelAt(image, y, image.height() - 1 - x); });
}

}  // namespace lumiscan::desktop
