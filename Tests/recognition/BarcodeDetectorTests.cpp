#include "platform/linux/recognition/BarcodeDetector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <future>

#include "Pictures.h"
#include "platform/linux/recognition/CodeSearch.h"

namespace lumiscan::desktop {
namespace {

using platform::Image;
using platform::Symbology;
using testing::ElementsAre;
using testing::IsEmpty;
using ZXing::BarcodeFormat;

struct Sample {
  Symbology symbology;
  BarcodeFormat format;
  std::string payload;
};

const std::vector<Sample> samples{
    {Symbology::qr, BarcodeFormat::QRCode, "https://example.com/a?b=c"},
    {Symbology::aztec, BarcodeFormat::Aztec, "Boarding pass 12A"},
    {Symbology::dataMatrix, BarcodeFormat::DataMatrix, "part 4711-B"},
    {Symbology::pdf417, BarcodeFormat::PDF417, "Stacked rows of bars"},
    {Symbology::ean13, BarcodeFormat::EAN13, "4006381333931"},
    {Symbology::ean8, BarcodeFormat::EAN8, "73513537"},
    {Symbology::code128, BarcodeFormat::Code128, "Shelf 12/c"},
    {Symbology::code39, BarcodeFormat::Code39, "PARCEL 88"},
    {Symbology::code93, BarcodeFormat::Code93, "ASSET-0042"},
    {Symbology::upce, BarcodeFormat::UPCE, "01234565"},
};

/// All symbologies but one, if one is given.
std::vector<Symbology> symbologies(std::optional<Symbology> except = std::nullopt) {
  std::vector<Symbology> others;
  for (const Sample& sample : samples)
    if (sample.symbology != except) others.push_back(sample.symbology);
  return others;
}

std::vector<std::string> payloads(const Image& image, const std::vector<Symbology>& asked = symbologies()) {
  const auto result = ZXingDetector().perform(asked, image);
  if (!result.ok()) return {"error: " + result.error().text};
  std::vector<std::string> texts;
  for (const auto& observation : result.value())
    texts.push_back(observation.payloadStringValue.value_or("(no text)"));
  return texts;
}

TEST(BarcodeDetector, ReadsEverySymbology) {
  for (const Sample& sample : samples) {
    SCOPED_TRACE(ZXing::ToString(sample.format));
    const Image code = codePicture(sample.format, sample.payload);
    const auto result = ZXingDetector().perform(symbologies(), code);
    ASSERT_TRUE(result.ok());
    ASSERT_EQ(result.value().size(), 1U);
    EXPECT_EQ(result.value().front().symbology, sample.symbology);
    EXPECT_EQ(result.value().front().payloadStringValue, sample.payload);

    EXPECT_THAT(payloads(invertedPicture(code)), ElementsAre(sample.payload)) << "light on dark";
    EXPECT_THAT(payloads(quarterTurned(code)), ElementsAre(sample.payload)) << "turned";
    EXPECT_THAT(payloads(asXrgb(withLongRows(code))), ElementsAre(sample.payload)) << "other pixels";
    EXPECT_THAT(payloads(codePicture(sample.format, sample.payload, 1)), ElementsAre(sample.payload))
        << "a pixel a module";
  }
}

TEST(BarcodeDetector, TextMayHaveControlCharactersAndBytesAreNoText) {
  const std::string licence = "@\n\x1e\rANSI 636000090002DL00410278DLDAQT64235789\nDCSSAMPLE\n";
  EXPECT_THAT(payloads(codePicture(BarcodeFormat::PDF417, licence)), ElementsAre(licence));
  for (const BarcodeFormat format :
       {BarcodeFormat::QRCode, BarcodeFormat::DataMatrix, BarcodeFormat::Aztec, BarcodeFormat::Code128})
    EXPECT_THAT(payloads(codePicture(format, "user\tpass")), ElementsAre("user\tpass"))
        << ZXing::ToString(format);
  EXPECT_THAT(payloads(codePicture(BarcodeFormat::QRCode, "(01)95\x1d(10)AB")),
              ElementsAre("(01)95\x1d(10)AB"));
  using ZXing::CharacterSet;
  EXPECT_THAT(payloads(codePicture(BarcodeFormat::QRCode, "Größe\tя", 3, CharacterSet::UTF8)),
              ElementsAre("Größe\tя"));
  EXPECT_THAT(payloads(codePicture(BarcodeFormat::QRCode, "C:\\000899\tя", 3, CharacterSet::UTF8)),
              ElementsAre("C:\\000899\tя"));
  // Each character is one byte.
  const std::string bytes = "\u0001\u00FE\u0080\u0003\u00C3";
  EXPECT_THAT(payloads(codePicture(BarcodeFormat::QRCode, bytes)), ElementsAre("(no text)"));
  EXPECT_THAT(payloads(codePicture(BarcodeFormat::QRCode, bytes, 3, CharacterSet::BINARY)),
              ElementsAre("(no text)"));
}

TEST(BarcodeDetector, ReadsOnlyTheSymbologiesAskedFor) {
  const Image others = Page(500, 400)
                           .lay(codePicture(BarcodeFormat::ITF, "12345678901231", 2), 10, 10)
                           .lay(codePicture(BarcodeFormat::Codabar, "A40156B", 2), 10, 200)
                           .image();
  EXPECT_THAT(payloads(others), IsEmpty());
  // Eight digits of UPC-E are also the start of no other code, so nothing may be made of them.
  for (const Sample& sample : samples)
    EXPECT_THAT(payloads(codePicture(sample.format, sample.payload), symbologies(sample.symbology)),
                IsEmpty())
        << ZXing::ToString(sample.format);
  EXPECT_THAT(payloads(codePicture(BarcodeFormat::QRCode, "text"), {}), IsEmpty());
}

TEST(BarcodeDetector, EqualCodesAndLinearOnesSideBySideAreReportedOnceEach) {
  const Image matrix = codePicture(BarcodeFormat::QRCode, "same");
  EXPECT_THAT(payloads(Page(400, 200).lay(matrix, 10, 10).lay(matrix, 200, 10).image()),
              ElementsAre("same", "same"));
  const Image small = codePicture(BarcodeFormat::QRCode, "same", 1);
  EXPECT_THAT(payloads(Page(200, 100).lay(small, 10, 10).lay(small, 10 + small.width() - 4, 10).image()),
              ElementsAre("same", "same"))
      << "within one margin";
  // Asked for all at once, the library would end the process.
  const Image code = codePicture(BarcodeFormat::Code128, "twice", 2);
  EXPECT_THAT(payloads(Page(700, 300).lay(code, 10, 10).lay(code, 10, 150).image()),
              ElementsAre("twice", "twice"));
  EXPECT_THAT(payloads(Page(900, 200).lay(code, 10, 10).lay(code, 400, 10).image()),
              ElementsAre("twice", "twice"));
  // Large enough to be searched in reduced sizes too.
  const Image large = codePicture(BarcodeFormat::EAN13, "4006381333931", 8);
  EXPECT_THAT(payloads(Page(1100, 1200).lay(large, 0, 100).lay(quarterTurned(code), 10, 700).image()),
              ElementsAre("4006381333931", "twice"));

  Page shelf(900, 1000);
  std::vector<std::string> expected;
  for (int i = 0; i < 12; ++i) {
    expected.push_back("item " + std::to_string(i));
    shelf.lay(codePicture(BarcodeFormat::Code128, expected.back(), 2), 10 + 420 * (i % 2),
              10 + 150 * (i / 2));
  }
  EXPECT_EQ(payloads(shelf.image()), expected);
}

TEST(BarcodeDetector, ReadsCodesCutOutTightly) {
  for (const auto& [format, payload] :
       {std::pair(BarcodeFormat::QRCode, "no margin"), std::pair(BarcodeFormat::DataMatrix, "none here"),
        std::pair(BarcodeFormat::Code128, "bars only")}) {
    const Image code = codePicture(format, payload, 2);
    // The writer parts a linear code's margin between both sides, and gives it none above and below.
    const bool linear = format == BarcodeFormat::Code128;
    const double beside = linear ? 10 : 8;
    const double above = linear ? 0 : 8;
    const auto tight =
        code.cropped({{beside, above}, {code.width() - 2 * beside, code.height() - 2 * above}});
    ASSERT_TRUE(tight);
    EXPECT_THAT(payloads(*tight), ElementsAre(payload));
    EXPECT_THAT(payloads(invertedPicture(*tight)), ElementsAre(payload));
  }
}

TEST(BarcodeDetector, ReadsSmallCodesBesideLargeOnes) {
  const Image card = Page(60, 60).lay(codePicture(BarcodeFormat::QRCode, "on a card", 2), 1, 1).image();
  const Image dark = invertedPicture(Page(300, 100).image());
  const Image page = Page(700, 500)
                         .lay(codePicture(BarcodeFormat::QRCode, "large", 5), 10, 10)
                         .lay(codePicture(BarcodeFormat::DataMatrix, "tiny", 1), 301, 57)
                         .lay(codePicture(BarcodeFormat::Aztec, "small", 1), 405, 51)
                         .lay(dark, 20, 300)
                         .lay(*card.cropped({{2, 2}, {56, 56}}), 60, 320)
                         .image();
  EXPECT_THAT(payloads(page), ElementsAre("large", "tiny", "small", "on a card"));
}

TEST(BarcodeDetector, FaintEndsOfBarsAreNoSecondCode) {
  GreyBitmap bars = greyBitmap(codePicture(BarcodeFormat::EAN13, "4006381333931"));
  for (int y = 0; y < bars.height; ++y) {
    const int fromEnd = std::min(y, bars.height - 1 - y);
    for (int x = 0; x < bars.width && fromEnd < 8; ++x)
      bars.at(x, y) = static_cast<std::uint8_t>(255 - (255 - bars.at(x, y)) * (fromEnd + 1) / 9);
  }
  EXPECT_EQ(searchCodes(bars, BarcodeFormat::EAN13).size(), 1U);
}

TEST(BarcodeDetector, ThreadsDontDisturbEachOther) {
  Page page(900, 500);
  for (std::size_t i = 0; i < samples.size(); ++i)
    page.lay(codePicture(samples[i].format, samples[i].payload, 1), 10 + 220 * static_cast<int>(i % 4),
             10 + 160 * static_cast<int>(i / 4));
  const Image image = page.image();
  // By the top and the left of each, not by its kind.
  std::vector<std::string> expected;
  for (const Sample& sample : samples) expected.push_back(sample.payload);
  std::vector<std::future<std::vector<std::string>>> others;
  for (int i = 0; i < 4; ++i)
    others.push_back(std::async(std::launch::async, [&] { return payloads(image); }));
  for (auto& other : others) EXPECT_EQ(other.get(), expected);
}

TEST(BarcodeDetector, NothingInImagesWithoutCodes) {
  EXPECT_THAT(payloads(Page(1, 1).image()), IsEmpty());
  EXPECT_THAT(payloads(Page(1, 16'384).image()), IsEmpty());
  EXPECT_THAT(payloads(pictureOf({"||| lllIIl | ||l IIIl ||", "Plain words beside bars ||||| |||"})),
              IsEmpty());
}

TEST(BarcodeDetector, RefusesImagesThatAreTooLarge) {
  const auto pixels = std::make_shared<std::vector<std::uint32_t>>(20'000);
  const Image wide(20'000, 1, 80'000, platform::PixelFormat::xrgb,
                   {pixels, reinterpret_cast<const std::byte*>(pixels->data())});
  EXPECT_THAT(payloads(wide), ElementsAre(testing::MatchesRegex("error: .+")));
}

}  // namespace
}  // namespace lumiscan::desktop
