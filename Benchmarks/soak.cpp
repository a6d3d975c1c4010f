// Whether memory grows with captures: recognises text and codes in turn, over and over in one process, text
// on pictures among it, and prints how much memory the process holds.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "ImageFile.h"
#include "platform/linux/LinuxDesktop.h"
#include "recognition/BarcodeService.h"
#include "recognition/OCRService.h"
#include "recognition/Pictures.h"

namespace {

namespace fs = std::filesystem;
using lumiscan::platform::Image;

/// The smaller images of a folder, so that many captures take little time.
std::vector<Image> smallImages(const fs::path& folder) {
  constexpr int mostPixels = 100'000;
  constexpr std::size_t mostImages = 40;
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder))
    if (entry.path().extension() == ".png") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  std::vector<Image> images;
  for (const fs::path& file : files) {
    const auto image = lumiscan::benchmark::readPng(file);
    if (image.ok() && image.value().width() * image.value().height() <= mostPixels)
      images.push_back(image.value());
    if (images.size() == mostImages) break;
  }
  return images;
}

/// Text that is read a second time, by its own colour, since it stands on a picture; a picture without text,
/// for which that is tried in vain; and the numbers of footnotes.
std::vector<Image> drawnImages() {
  using lumiscan::platform::Color;
  const std::vector<std::string> lines{"They never asked for", "the old photograph"};
  std::vector<Image> images;
  for (const double size : {18.0, 26.0}) {
    images.push_back(lumiscan::desktop::pictureWithText(lines, size, Color::white(), true));
    images.push_back(lumiscan::desktop::pictureWithText(lines, size, {1, 1, 0, 1}, false));
  }
  images.push_back(lumiscan::desktop::pictureWithText({}, 100, Color::white(), false));
  for (const std::string number : {"1", "2", "7"})
    images.push_back(lumiscan::desktop::rowPicture({{"as it was written there", 20}, {number, 15, 0, 9}}));
  return images;
}

/// One of the kernel's figures about this process's memory, in KiB; 0 where it has none of that name.
long memory(const std::string& name) {
  std::ifstream figures("/proc/self/smaps_rollup");
  for (std::string line; std::getline(figures, line);)
    if (line.starts_with(name + ":")) return std::strtol(line.c_str() + name.size() + 1, nullptr, 10);
  return 0;
}

void print(int captures) {
  std::printf("%6d captures: RSS %ld KiB, PSS %ld KiB\n", captures, memory("Rss"), memory("Pss"));
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int captures = argc == 4 ? std::atoi(argv[3]) : 10'000;
  if (argc < 3 || argc > 4 || captures <= 0) {
    std::cerr << "usage: soak TEXT_FOLDER CODES_FOLDER [CAPTURES]\n";
    return 2;
  }
  lumiscan::desktop::LinuxDesktop desktop;
  std::vector<Image> texts = smallImages(argv[1]);
  const std::vector<Image> codes = smallImages(argv[2]);
  if (texts.empty() || codes.empty()) {
    std::cerr << "no small images there\n";
    return 1;
  }
  std::ranges::copy(drawnImages(), std::back_inserter(texts));
  constexpr int warmUp = 100;
  std::size_t read = 0;
  for (int i = 1; i <= captures; ++i) {
    const auto turn = static_cast<std::size_t>(i / 2);
    if (i % 2 == 0) {
      const auto text = lumiscan::OCRService::recognizeText(texts[turn % texts.size()], {"en-US"});
      read += text.ok() && !text.value().empty();
    } else {
      const auto payloads = lumiscan::BarcodeService::decode(codes[turn % codes.size()]);
      read += payloads.ok() && !payloads.value().empty();
    }
    if (i == warmUp || i % std::max(1, captures / 10) == 0) print(i);
  }
  std::printf("something was read in %zu of %d\n", read, captures);
}
