#include "platform/linux/recognition/Icons.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumiscan::desktop {
namespace {

/// What the engine makes of the ink before a label.
struct Read {
  std::string text;  // A byte is a symbol, unless all is one.
  double confidence = 99;
  bool isLikely = false;
};

/// Whether ink of a height in pixels, beside letters of 8, is left out once it was read so.
bool isLeftOut(const Read& read, MaybeIcon icon, int height = 14, bool isCode = false) {
  const PixelBox box{0, 12 - height, 13, 11};
  icon.box = box;
  TextLine line{{{box}}, {}, 8, 12, {icon}};
  for (int x = 24; x < 64; x += 8) line.glyphs.push_back({{x, 4, x + 5, 11}});
  line.box = boxAround(line.glyphs);
  if (isCode) line.cells = Cells{8, 4};
  const bool isOne = static_cast<unsigned char>(read.text.front()) > 0x7F;
  const int count = isOne ? 1 : static_cast<int>(read.text.size());
  std::vector<Symbol> symbols;
  for (int i = 0; i < count; ++i) {
    const PixelBox part{i * 14 / count, box.top, (i + 1) * 14 / count - 1, box.bottom};
    symbols.push_back({isOne ? read.text : read.text.substr(static_cast<std::size_t>(i), 1), false, part,
                       read.confidence, true, read.isLikely});
  }
  for (const Glyph& letter : line.glyphs)
    if (letter.box.left >= 24) symbols.push_back({"e", false, letter.box, 99, true, true});
  const std::optional<TextLine> rest = withoutIcons(line, symbols);
  if (!rest) return false;
  EXPECT_EQ(rest->glyphs.size(), 5U);
  EXPECT_EQ(rest->letterHeight, 8);
  EXPECT_EQ(rest->baseline, 12);
  return true;
}

constexpr MaybeIcon onTheLine{{}, false, true};
constexpr MaybeIcon aboutIt{{}, false, false};
constexpr MaybeIcon likeALetter{{}, true, false};

TEST(Icons, AreLeftOutWhereTheyWereReadAsSignsOrUnsurely) {
  EXPECT_TRUE(isLeftOut({"\u00A9", 99}, aboutIt));
  EXPECT_TRUE(isLeftOut({"&", 99, true}, aboutIt));
  EXPECT_TRUE(isLeftOut({"&", 80}, onTheLine));
  EXPECT_TRUE(isLeftOut({"=)", 90}, onTheLine));
  EXPECT_TRUE(isLeftOut({"ae", 60}, onTheLine));
  EXPECT_TRUE(isLeftOut({"ae", 98}, aboutIt)) << "letters that look otherwise and reach below the line";
  EXPECT_TRUE(isLeftOut({"O", 99}, likeALetter)) << "a letter of another shape";
}

TEST(Icons, AreTextWhereTheyWereReadAsSuch) {
  EXPECT_FALSE(isLeftOut({"a", 99, true}, onTheLine));
  EXPECT_FALSE(isLeftOut({"ab", 96, true}, onTheLine));
  EXPECT_FALSE(isLeftOut({"gy", 98}, aboutIt)) << "letters that reach below the line";
  EXPECT_FALSE(isLeftOut({"\u00E9", 80}, aboutIt)) << "a letter whose shape nobody knows";
  EXPECT_FALSE(isLeftOut({"O", 99, true}, likeALetter));
  EXPECT_FALSE(isLeftOut({"&", 98}, onTheLine, 8)) << "too small for a shape";
  EXPECT_FALSE(isLeftOut({"=)", 50}, aboutIt, 14, true)) << "signs of code";
}

}  // namespace
}  // namespace lumiscan::desktop
