// How well and how fast a folder of images is read: recognises every PNG of a folder as the program would,
// writes what was read, and compares it with the true text where the folder holds it.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ImageFile.h"
#include "TextAccuracy.h"
#include "platform/linux/LinuxDesktop.h"
#include "recognition/BarcodeService.h"
#include "recognition/OCRService.h"

namespace {

namespace fs = std::filesystem;
using lumiscan::platform::Image;
using lumiscan::platform::Result;

struct Arguments {
  bool barcodes = false;
  fs::path folder;
  fs::path output;
  std::vector<std::string> languages{"en-US"};
};

std::vector<std::string> commaSeparated(std::string_view list) {
  std::vector<std::string> parts(1);
  for (const char c : list) {
    if (c == ',')
      parts.emplace_back();
    else
      parts.back() += c;
  }
  return parts;
}

std::optional<Arguments> parse(const std::vector<std::string>& words) {
  Arguments arguments;
  for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
    const std::string& option = words[i];
    const std::string& value = words[i + 1];
    if (option == "--text" || option == "--barcodes") {
      arguments.barcodes = option == "--barcodes";
      arguments.folder = value;
    } else if (option == "--output") {
      arguments.output = value;
    } else if (option == "--languages") {
      arguments.languages = commaSeparated(value);
    } else {
      return std::nullopt;
    }
  }
  if (words.size() % 2 != 0 || arguments.folder.empty() || arguments.output.empty()) return std::nullopt;
  return arguments;
}

std::vector<fs::path> imagesOf(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder))
    if (entry.path().extension() == ".png") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

/// The true text beside an image.
std::optional<std::string> truthOf(fs::path image) {
  std::ifstream stream(image.replace_extension(".txt"), std::ios::binary);
  if (!stream) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

/// The time below which a share of the images lies, from 0 to 1.
double percentile(std::vector<double> times, double share) {
  std::sort(times.begin(), times.end());
  return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
}

using Read = std::function<Result<std::string>(const Image&)>;
using Compare = std::function<void(const std::string& truth, const std::string& reading)>;

/// Reads every image of the folder and prints the times.
void readAll(const Arguments& arguments, const Read& read, const Compare& compare) {
  std::vector<double> times;
  for (const fs::path& file : imagesOf(arguments.folder)) {
    const auto image = lumiscan::benchmark::readPng(file);
    if (!image.ok()) {
      std::cerr << file.filename().string() << ": " << image.error().text << '\n';
      continue;
    }
    const auto start = std::chrono::steady_clock::now();
    const Result<std::string> reading = read(image.value());
    times.push_back(
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    if (!reading.ok()) std::cerr << file.filename().string() << ": " << reading.error().text << '\n';
    const std::string text = reading.ok() ? reading.value() : std::string();
    std::ofstream(arguments.output / (file.stem().string() + ".txt"), std::ios::binary)
        << text << (text.empty() ? "" : "\n");
    if (const auto truth = truthOf(file)) compare(*truth, text);
  }
  std::printf("images %zu\n", times.size());
  if (!times.empty())
    std::printf("milliseconds per image: median %.1f, 95th percentile %.1f\n", percentile(times, 0.5),
                percentile(times, 0.95));
}

void measureText(const Arguments& arguments) {
  // As the program does while the user is still selecting.
  lumiscan::OCRService::prepare(arguments.languages);
  lumiscan::benchmark::TextAccuracy accuracy;
  readAll(
      arguments,
      [&](const Image& image) { return lumiscan::OCRService::recognizeText(image, arguments.languages); },
      [&](const std::string& truth, const std::string& reading) { accuracy.add(truth, reading); });
  if (accuracy.empty()) return;
  std::printf("character error rate %.3f %%\n", 100 * accuracy.characterErrorRate());
  std::printf("exactly right lines %.2f %%\n", 100 * accuracy.exactLineShare());
}

Result<std::string> decodeAll(const Image& image) {
  auto payloads = lumiscan::BarcodeService::decode(image);
  if (!payloads.ok()) return payloads.error();
  std::string lines;
  for (const std::string& payload : payloads.value()) lines += (lines.empty() ? "" : "\n") + payload;
  return lines;
}

void measureBarcodes(const Arguments& arguments) {
  std::size_t right = 0;
  std::size_t known = 0;
  readAll(arguments, decodeAll, [&](const std::string& truth, const std::string& reading) {
    ++known;
    right += lumiscan::benchmark::linesOf(truth) == lumiscan::benchmark::linesOf(reading);
  });
  if (known > 0)
    std::printf("exactly right images %.2f %%\n",
                100 * static_cast<double>(right) / static_cast<double>(known));
}

}  // namespace

int main(int argc, char** argv) {
  const auto arguments = parse({argv + 1, argv + argc});
  if (!arguments) {
    std::cerr << "usage: recognition_benchmark --text FOLDER --output FOLDER [--languages en-US,de-DE]\n"
                 "       recognition_benchmark --barcodes FOLDER --output FOLDER\n";
    return 2;
  }
  std::error_code error;
  fs::create_directories(arguments->output, error);
  if (error || !fs::is_directory(arguments->folder)) {
    std::cerr << "no such folder: " << (error ? arguments->output : arguments->folder).string() << '\n';
    return 1;
  }
  lumiscan::desktop::LinuxDesktop desktop;
  if (arguments->barcodes)
    measureBarcodes(*arguments);
  else
    measureText(*arguments);
}
