#include "selftest/SelfTest.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/BitmapContext.h"
#include "platform/QRCode.h"
#include "recognition/BarcodeService.h"
#include "recognition/OCRService.h"

namespace lumiscan::SelfTest {

namespace {

constexpr std::string_view renderedText = "Lumiscan 24680 varnholt";
constexpr std::string_view brokenLines = "one\ntwo\n\n  \nthree";
constexpr std::string_view collapsedLines = "one two three";
constexpr std::string_view qrPayload = "https://varnholt.com/lumiscan";

std::optional<platform::Image> renderText(std::string_view text) {
  constexpr int width = 1000;
  constexpr int height = 220;
  const auto context = platform::BitmapContext::create(width, height);
  if (!context) return std::nullopt;
  context->fill(platform::BezierPath::rect({{0, 0}, {width, height}}), platform::Color::white());
  const platform::TextAttributes attributes{
      {platform::Font::Design::sansSerif, 72, platform::FontWeight::bold}, platform::Color::black()};
  context->drawLine(text, {40, 110 - context->sizeOf(text, attributes).height / 2}, attributes);
  return context->makeImage();
}

std::optional<platform::Image> makeQR(std::string_view text) {
  const auto code = platform::generateQRCode(text, platform::QRCorrectionLevel::high);
  if (!code) return std::nullopt;
  constexpr int pixelsPerModule = 12;
  return platform::enlarged(*code, pixelsPerModule);
}

std::string lowercased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

std::string bracketed(const std::vector<std::string>& payloads) {
  std::string list = "[";
  for (const std::string& payload : payloads) {
    if (list.size() > 1) list += ", ";
    list += '"' + payload + '"';
  }
  return list + "]";
}

/// Prints the checks' lines and counts those that failed.
class Report {
 public:
  void check(std::string_view name, bool passed, std::string_view detail) {
    std::cout << (passed ? "PASS  " : "FAIL  ") << name;
    if (!passed) {
      ++failures_;
      if (!detail.empty()) std::cout << " — " << detail;
    }
    std::cout << '\n';
  }
  int failures() const { return failures_; }

 private:
  int failures_ = 0;
};

}  // namespace

std::int32_t run() {
  const auto textImage = renderText(renderedText);
  if (!textImage) {
    std::cout << "FAIL  text rendering returned nil" << std::endl;
    return 1;
  }

  Report report;
  const std::string text = OCRService::recognizeText(*textImage, {"en-US"}).valueOr("");
  report.check("OCR recognizes the app name", lowercased(text).find("lumiscan") != std::string::npos,
               "got: " + text);
  report.check("OCR recognizes digits", text.find("24680") != std::string::npos, "got: " + text);

  const std::string collapsed = OCRService::collapseLineBreaks(brokenLines);
  report.check("Line collapsing", collapsed == collapsedLines, "got: " + collapsed);

  const auto codeImage = makeQR(qrPayload);
  if (!codeImage) {
    std::cout << "FAIL  QR generation returned nil" << std::endl;
    return 1;
  }
  const std::vector<std::string> payloads = BarcodeService::decode(*codeImage).valueOr({});
  report.check("QR round-trip", std::find(payloads.begin(), payloads.end(), qrPayload) != payloads.end(),
               "got: " + bracketed(payloads));

  if (report.failures() == 0)
    std::cout << "\nAll self-tests passed." << std::endl;
  else
    std::cout << '\n' << report.failures() << " self-test(s) failed." << std::endl;
  return report.failures() == 0 ? 0 : 1;
}

}  // namespace lumiscan::SelfTest
