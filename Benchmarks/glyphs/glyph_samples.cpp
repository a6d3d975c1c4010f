// Examples to train the glyph classifier on: cuts the sheets of make-glyphs into characters as the program
// would, and writes each with its true code point. Of images without text it writes every cluster as no
// character.

#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "ImageFile.h"
#include "platform/linux/recognition/Clusters.h"
#include "platform/linux/recognition/GlyphShape.h"
#include "platform/linux/recognition/ImagePreparation.h"
#include "platform/linux/recognition/TextLayout.h"

namespace {

namespace fs = std::filesystem;
using lumiscan::desktop::Cluster;
using lumiscan::desktop::GlyphShape;
using lumiscan::desktop::GreyBitmap;
using lumiscan::desktop::TextLine;

constexpr std::uint32_t noCharacter = 0;

/// The true tokens of each line, or nothing for an image without text.
std::vector<std::vector<std::u32string>> tokensOf(const fs::path& file) {
  std::vector<std::vector<std::u32string>> lines;
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    lines.emplace_back(1);
    const auto text = icu::UnicodeString::fromUTF8(line);
    for (int i = 0; i < text.length(); i = text.moveIndex32(i, 1))
      if (const UChar32 c = text.char32At(i); c == U' ')
        lines.back().emplace_back();
      else
        lines.back().back() += static_cast<char32_t>(c);
  }
  return lines;
}

/// The clusters between the `count - 1` widest gaps.
std::vector<std::vector<Cluster>> groups(const std::vector<Cluster>& clusters, std::size_t count) {
  if (clusters.size() < count || count == 0) return {};
  std::vector<int> gaps;
  for (std::size_t i = 1; i < clusters.size(); ++i)
    gaps.push_back(clusters[i].box.left - clusters[i - 1].box.right);
  std::vector<int> sorted = gaps;
  std::sort(sorted.rbegin(), sorted.rend());
  const int narrowest = count > 1 ? sorted[count - 2] : 0;
  const int next = count - 1 < sorted.size() ? sorted[count - 1] : 0;
  if (narrowest < 2 * next) return {};  // Not surely told apart.
  std::vector<std::vector<Cluster>> found{{clusters.front()}};
  for (std::size_t i = 1; i < clusters.size(); ++i) {
    if (gaps[i - 1] >= narrowest) found.emplace_back();
    found.back().push_back(clusters[i]);
  }
  return found.size() == count ? found : std::vector<std::vector<Cluster>>{};
}

class Writer {
 public:
  explicit Writer(const fs::path& file) : stream_(file, std::ios::binary) {}
  void add(std::uint32_t point, const GlyphShape& shape) {
    stream_.write(reinterpret_cast<const char*>(&point), sizeof point);
    stream_.write(reinterpret_cast<const char*>(shape.inputs.data()),
                  static_cast<std::streamsize>(shape.inputs.size()));
    ++count_;
  }
  std::size_t count() const { return count_; }

 private:
  std::ofstream stream_;
  std::size_t count_ = 0;
};

void addSheet(GreyBitmap ink, const std::vector<std::vector<std::u32string>>& truth, Writer& writer) {
  const std::vector<TextLine> lines =
      lumiscan::desktop::findTextLines(ink, lumiscan::desktop::Characters::alphabetic);
  if (!truth.empty() && lines.size() != truth.size()) return;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::vector<Cluster> clusters = lumiscan::desktop::clustersOf(lines[i].glyphs);
    const auto write = [&](std::uint32_t point, const Cluster& cluster) {
      writer.add(point, shapeOf(ink, cluster, lines[i]));
    };
    if (truth.empty()) {
      for (const Cluster& cluster : clusters) write(noCharacter, cluster);
      continue;
    }
    const auto tokens = groups(clusters, truth[i].size());
    for (std::size_t k = 0; k < tokens.size(); ++k) {
      const std::u32string& characters = truth[i][k];
      const std::vector<Cluster>& parts = tokens[k];
      if (characters.size() == 1)
        write(characters.front(), joined(parts, 0, parts.size()));
      else if (parts.size() == 1)
        write(noCharacter, parts.front());
      else if (parts.size() == characters.size())
        for (std::size_t c = 0; c < parts.size(); ++c) write(characters[c], parts[c]);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: glyph_samples OUT FOLDER...\n";
    return 2;
  }
  Writer writer(argv[1]);
  for (int i = 2; i < argc; ++i)
    for (const fs::directory_entry& entry : fs::directory_iterator(argv[i])) {
      if (entry.path().extension() != ".png") continue;
      const auto image = lumiscan::benchmark::readPng(entry.path());
      if (image.ok())
        addSheet(lumiscan::desktop::inkOf(image.value()),
                 tokensOf(fs::path(entry.path()).replace_extension(".txt")), writer);
    }
  std::cout << writer.count() << " examples\n";
}
