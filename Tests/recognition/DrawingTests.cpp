#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Pictures.h"
#include "platform/linux/drawing/BitmapContext.h"
#include "platform/linux/drawing/QRCode.h"
#include "platform/linux/recognition/BarcodeDetector.h"

namespace lumiscan::desktop {
namespace {

using platform::BezierPath;
using platform::Color;
using platform::Font;
using platform::FontWeight;
using platform::Image;
using platform::QRCorrectionLevel;

std::uint32_t pixel(const Image& image, int x, int y) {
  return reinterpret_cast<const std::uint32_t*>(image.row(y))[x];
}

TEST(BitmapContext, StartsClearAndRefusesImpossibleSizes) {
  EXPECT_EQ(pixel(CairoBitmapContext::create(3, 2)->makeImage(), 1, 1), 0U);
  EXPECT_EQ(CairoBitmapContext::create(0, 5), nullptr);
  EXPECT_EQ(CairoBitmapContext::create(5, -1), nullptr);
  EXPECT_EQ(CairoBitmapContext::create(1'000'000, 1'000'000), nullptr);
}

TEST(BitmapContext, DrawsShapesWithYUpwardsAndPremultipliedColours) {
  const auto context = CairoBitmapContext::create(20, 10);
  context->fill(BezierPath::rect({{0, 0}, {20, 2}}), {1, 0, 0, 1});
  context->fill(BezierPath::rect({{0, 8}, {20, 2}}), {0, 0, 1, 0.5});
  BezierPath line;
  line.segments.push_back({{2, 5}, {18, 5}});
  line.lineWidth = 2;
  context->stroke(line, Color::black());
  const Image image = context->makeImage();
  EXPECT_EQ(image.format(), platform::PixelFormat::argbPremultiplied);
  EXPECT_EQ(pixel(image, 5, 9), 0xFFFF0000U) << "the bottom";
  EXPECT_EQ(pixel(image, 5, 0), 0x80000080U) << "the top";
  EXPECT_EQ(pixel(image, 10, 4), 0xFF000000U);
  EXPECT_EQ(pixel(image, 10, 2), 0U);

  context->fill(BezierPath::oval({{0, 0}, {20, 10}}), Color::white());
  EXPECT_EQ(pixel(image, 10, 2), 0U) << "an image doesn't change with the context";
  const Image after = context->makeImage();
  EXPECT_EQ(pixel(after, 10, 2), 0xFFFFFFFFU);
  EXPECT_EQ(pixel(after, 0, 9), 0xFFFF0000U) << "outside the oval";
}

TEST(BitmapContext, FontsDiffer) {
  const auto context = CairoBitmapContext::create(10, 10);
  const auto width = [&](Font::Design design, FontWeight weight, const char* text) {
    return context->sizeOf(text, {{design, 40, weight}, Color::black()}).width;
  };
  EXPECT_GT(width(Font::Design::sansSerif, FontWeight::bold, "nnnn"),
            width(Font::Design::sansSerif, FontWeight::regular, "nnnn"));
  EXPECT_DOUBLE_EQ(width(Font::Design::monospaced, FontWeight::regular, "iiii"),
                   width(Font::Design::monospaced, FontWeight::regular, "MMMM"));
  EXPECT_LT(width(Font::Design::system, FontWeight::regular, "iiii"),
            width(Font::Design::system, FontWeight::regular, "MMMM"));
  // Helvetica's bold capital M is 0.833 of the size wide.
  EXPECT_NEAR(width(Font::Design::sansSerif, FontWeight::bold, "M"), 0.833 * 40, 0.3);
}

TEST(QRCode, HoldsTheBytesOfTheMessageAtEveryLevel) {
  const std::vector<platform::Symbology> qr{platform::Symbology::qr};
  int previous = 0;
  for (const auto level : {QRCorrectionLevel::low, QRCorrectionLevel::medium, QRCorrectionLevel::quartile,
                           QRCorrectionLevel::high}) {
    const std::string message =
        "https://example.com/größe?q=日本語\xC2\x80 and more to make the levels differ";
    const auto code = makeQRCode(message, level);
    ASSERT_TRUE(code);
    EXPECT_EQ(code->width(), code->height());
    EXPECT_GT(code->width(), previous) << "more correction needs more modules";
    previous = code->width();
    for (int i = 0; i < 4; ++i) EXPECT_EQ(pixel(*code, i, i), 0xFFFFFFFFU) << "quiet zone";
    EXPECT_EQ(pixel(*code, 4, 4), 0xFF000000U) << "finder pattern";
    const auto found = ZXingDetector().perform(qr, platform::enlarged(*code, 4));
    ASSERT_TRUE(found.ok());
    ASSERT_EQ(found.value().size(), 1U);
    EXPECT_EQ(found.value().front().payloadStringValue, message);
  }
}

TEST(QRCode, BytesThatAreNoTextHaveNoTextPayload) {
  const auto code = makeQRCode(std::string("\x00\x01\xFF\xFE\x00\x02\x80", 7), QRCorrectionLevel::medium);
  ASSERT_TRUE(code);
  const auto found = ZXingDetector().perform({platform::Symbology::qr}, platform::enlarged(*code, 4));
  ASSERT_TRUE(found.ok());
  ASSERT_EQ(found.value().size(), 1U);
  EXPECT_EQ(found.value().front().payloadStringValue, std::nullopt);
}

TEST(QRCode, NothingForAMessageThatDoesNotFit) {
  EXPECT_TRUE(makeQRCode(std::string(1200, 'x'), QRCorrectionLevel::high));
  EXPECT_FALSE(makeQRCode(std::string(1300, 'x'), QRCorrectionLevel::high));
}

}  // namespace
}  // namespace lumiscan::desktop
