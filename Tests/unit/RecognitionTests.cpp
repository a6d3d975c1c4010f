#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recognition/BarcodeService.h"
#include "recognition/OCRService.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

using ::testing::ElementsAre;

TEST(OCRService, JoinsTheBestReadingsOfTheLinesAndHandsErrorsOn) {
  const std::pair<std::vector<platform::TextObservation>, std::string> cases[] = {
      {{}, ""},
      {{{{" first "}}, {{"second", "2nd"}}, {{"third"}}}, " first \nsecond\nthird"},
      {{{{"first"}}, {{}}, {{"third"}}}, "first\nthird"},
      {{{{}}, {{"second"}}}, "second"},
      {{{{""}}, {{"second"}}}, "\nsecond"},
  };
  testing::SimulatedDesktop desktop;
  const auto image = testing::coordinateImage(8, 8);
  for (const auto& [observations, text] : cases) {
    desktop.textRecognizer().result = observations;
    EXPECT_EQ(OCRService::recognizeText(image, {"en-US"}).valueOr("none"), text);
  }
  const auto& request = desktop.textRecognizer().requests.back();
  EXPECT_EQ(request.asked.recognitionLevel, platform::RecognitionLevel::accurate);
  EXPECT_TRUE(request.asked.usesLanguageCorrection);
  EXPECT_EQ(request.image.row(0), image.row(0)) << "the image is handed over as it is";
  desktop.textRecognizer().result = platform::Error{"no engine"};
  const auto text = OCRService::recognizeText(image, {"en-US"});
  ASSERT_FALSE(text.ok());
  EXPECT_EQ(text.error().text, "no engine");
}

TEST(OCRService, CollapsesLinesIntoOne) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"one\ntwo\n\n  \nthree", "one two three"},
      {"", ""},
      {"\n\n\n", ""},
      {" \t \n\t\n ", ""},
      {"  one  two \nthree", "one  two three"},
      {"\t single \t", "single"},
      {"hyphen-\nated", "hyphen- ated"},
      {"\nedge\n", "edge"},
      // A carriage return and a line feed are one character, and no line feed.
      {"a\r\nb", "a\r\nb"},
      {"a\r\n\nb", "a\r\n b"},
      {"a\n\r\nb", "a \r\nb"},
      {"\r\n", "\r\n"},
      {"a\r\r\nb\nc", "a\r\r\nb c"},
      // Other control characters are neither separators nor blanks.
      {"a\rb \r\nc\n\vd\n", "a\rb \r\nc \vd"},
      // Space separators of Unicode are trimmed at the ends and kept inside.
      {"\u00A0a\u00A0b\u00A0\n\u3000c\u2003", "a\u00A0b c"},
      {"\u00A0\n\u202F\t\nb", "b"},
      {"a\u2028\u0085\nb\u200B", "a\u2028\u0085 b\u200B"},
      {"größer\n文字\n😀 \n", "größer 文字 😀"},
      // What isn't UTF-8 stays.
      {" \xFF \n\xC2", "\xFF \xC2"},
  };
  for (const auto& [text, collapsed] : cases)
    EXPECT_EQ(OCRService::collapseLineBreaks(text), collapsed) << ::testing::PrintToString(text);
}

TEST(BarcodeService, AsksForItsTenSymbologiesAndGivesEveryTextPayloadOrTheError) {
  using platform::Symbology;
  testing::SimulatedDesktop desktop;
  desktop.barcodeDetector().result = std::vector<platform::BarcodeObservation>{
      {Symbology::qr, "same"}, {Symbology::aztec, {}}, {Symbology::ean13, ""}, {Symbology::qr, "same"}};
  const auto image = testing::coordinateImage(8, 8);
  EXPECT_THAT(BarcodeService::decode(image).valueOr({}), ElementsAre("same", "", "same"));
  ASSERT_EQ(desktop.barcodeDetector().requests.size(), 1U);
  const auto& request = desktop.barcodeDetector().requests[0];
  EXPECT_THAT(request.asked,
              ElementsAre(Symbology::qr, Symbology::aztec, Symbology::dataMatrix, Symbology::pdf417,
                          Symbology::ean13, Symbology::ean8, Symbology::code128, Symbology::code39,
                          Symbology::code93, Symbology::upce));
  EXPECT_EQ(request.image.row(0), image.row(0));

  desktop.barcodeDetector().result = platform::Error{"unsearchable"};
  ASSERT_FALSE(BarcodeService::decode(image).ok());
  EXPECT_EQ(BarcodeService::decode(image).error().text, "unsearchable");
}

}  // namespace
}  // namespace lumiscan
