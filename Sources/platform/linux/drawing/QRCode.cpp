#include "platform/linux/drawing/QRCode.h"

#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>

#include <cstdint>
#include <exception>
#include <string>

namespace lumiscan::desktop {

namespace {

/// The writer's scale of error correction, 0 to 8, two steps a level.
int writerLevel(platform::QRCorrectionLevel level) {
  switch (level) {
    case platform::QRCorrectionLevel::low:
      return 2;
    case platform::QRCorrectionLevel::medium:
      return 4;
    case platform::QRCorrectionLevel::quartile:
      return 6;
    case platform::QRCorrectionLevel::high:
      return 8;
  }
  return 8;
}

platform::Image drawModules(const ZXing::BitMatrix& modules) {
  constexpr std::uint32_t dark = 0xFF000000;
  constexpr std::uint32_t light = 0xFFFFFFFF;
  const int width = modules.width();
  const int height = modules.height();
  std::shared_ptr<std::uint32_t[]> words(
      new std::uint32_t[static_cast<std::size_t>(width) * static_cast<std::size_t>(height)]);
  std::uint32_t* word = words.get();
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) *word++ = modules.get(x, y) ? dark : light;
  return {width, height, 4 * static_cast<std::ptrdiff_t>(width), platform::PixelFormat::argbPremultiplied,
          std::shared_ptr<const std::byte>(words, reinterpret_cast<const std::byte*>(words.get()))};
}

}  // namespace

std::optional<platform::Image> makeQRCode(std::string_view message, platform::QRCorrectionLevel level) {
  // One character a byte: the writer's own encoding, Latin-1, turns each back into its byte, and without a
  // word about an encoding it adds no mark of it to the code, which older readers stumble over.
  std::wstring bytes;
  for (const char byte : message) bytes += static_cast<wchar_t>(static_cast<unsigned char>(byte));
  try {
    return drawModules(ZXing::MultiFormatWriter(ZXing::BarcodeFormat::QRCode)
                           .setEccLevel(writerLevel(level))
                           .setMargin(4)
                           .encode(bytes, 0, 0));
  } catch (const std::exception&) {
    return std::nullopt;  // Empty, or too long for the largest code.
  }
}

}  // namespace lumiscan::desktop
