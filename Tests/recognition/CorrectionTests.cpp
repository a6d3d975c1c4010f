#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/recognition/Bullets.h"
#include "platform/linux/recognition/Clusters.h"
#include "platform/linux/recognition/Columns.h"
#include "platform/linux/recognition/CutLines.h"
#include "platform/linux/recognition/FileTypes.h"
#include "platform/linux/recognition/GlyphCorrections.h"
#include "platform/linux/recognition/Numbers.h"
#include "platform/linux/recognition/Plausibility.h"
#include "platform/linux/recognition/QuotationStrokes.h"
#include "platform/linux/recognition/Spacing.h"

namespace lumiscan::desktop {
namespace {

/// A symbol for each character but the spaces, 8 pixels wide with a gap of 2 between letters and, where there
/// is a space, of `space`.
std::vector<Symbol> symbolsOf(std::string_view text, int space = 7) {
  std::vector<Symbol> symbols;
  int left = 0;
  bool spaceBefore = false;
  for (const char c : text) {
    if (std::exchange(spaceBefore, c == ' ')) left += space - 2;
    if (!spaceBefore) {
      symbols.push_back({std::string(1, c), false, {left, 0, left + 7, 11}, 99, true, true});
      left += 10;
    }
  }
  std::size_t next = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ' ') continue;
    symbols[next++].spaceBefore = i > 0 && text[i - 1] == ' ';
  }
  return symbols;
}

std::string textOf(const std::vector<Symbol>& symbols) {
  std::string text;
  for (const Symbol& symbol : symbols) text += (symbol.spaceBefore ? " " : "") + symbol.text;
  return text;
}

TEST(Corrections, LettersAndSignsWithinNumbersBecomeDigits) {
  const std::pair<std::string_view, std::string_view> texts[] = {
      {"if OxFFu or @x1O;", "if 0xFFu or 0x10;"},
      {"Oxford, @x86_name, Oxy", "Oxford, @x86_name, Oxy"},
      {"color: #ele4e8; #OOO; #f00", "color: #e1e4e8; #OOO; #f00"},
      {"#all #IO1 #include #lll", "#all #101 #include #lll"},
      {"margin: Opx lem l.5rem;", "margin: 0px 1em l.5rem;"},
      {"them, @em, px, Olem", "them, @em, px, 01em"},
  };
  for (const auto& [read, meant] : texts) {
    std::vector<Symbol> symbols = symbolsOf(read);
    correctNumbers(symbols);
    EXPECT_EQ(textOf(symbols), meant);
  }
}

TEST(Corrections, TheTypeOfAFileHasNoCapitalI) {
  const std::pair<std::string_view, std::string_view> texts[] = {
      {"notes.xIsx (a.yamI) b.Ink", "notes.xlsx (a.yamI) b.Ink"},
      {"it.isItem .xIs", "it.isItem .xls"},
      {"(x).isIn (y).xIsx(", "(x).isIn (y).xIsx("},
      {"xIs. xIs", "xIs. xIs"}};
  for (const auto& [read, meant] : texts) {
    std::vector<Symbol> symbols = symbolsOf(read);
    correctFileTypes(symbols);
    EXPECT_EQ(textOf(symbols), meant);
  }
}

TEST(Corrections, SpacesAreMeasuredAgainstTheGapsWithinWords) {
  TextLine line;
  line.letterHeight = 12;
  const auto corrected = [&](std::vector<Symbol> symbols) {
    correctSpaces({{&symbols, &line}});
    return textOf(symbols);
  };
  std::vector<Symbol> joined = symbolsOf("one two three four five");
  joined[6].spaceBefore = false;  // three
  EXPECT_EQ(corrected(std::move(joined)), "one two three four five");
  // Of spaces as narrow as the gaps within words there is none to measure others by.
  EXPECT_EQ(corrected(symbolsOf("a sign a mark no word", 2)), "a sign a mark no word");
}

TEST(Corrections, ANarrowGapIsASpaceWhereWordsOfOneLetterOrYearsAre) {
  TextLine line;
  line.letterHeight = 12;
  // The gap before one of the symbols, in pixels, where no space was read.
  const auto corrected = [&](std::string_view text, std::size_t at, int gap) {
    std::vector<Symbol> symbols = symbolsOf(text);
    const int further = gap - (symbols[at].box.left - symbols[at - 1].box.right - 1);
    for (std::size_t i = at; i < symbols.size(); ++i) {
      symbols[i].box.left += further;
      symbols[i].box.right += further;
    }
    symbols[at].spaceBefore = false;
    correctSpaces({{&symbols, &line}});
    return textOf(symbols);
  };
  EXPECT_EQ(corrected("one two was a dog", 9, 6), "one two was a dog");
  EXPECT_EQ(corrected("one two was any dog", 9, 6), "one two wasany dog");
  EXPECT_EQ(corrected("one two was gone on", 8, 5), "one two was gone on");
  EXPECT_EQ(corrected("on May 9, 2014 at two", 7, 5), "on May 9, 2014 at two");
  EXPECT_EQ(corrected("on the 9,204 at two", 7, 5), "on the 9,204 at two");
}

TEST(Corrections, BackticksStandNarrowInTheirPlaces) {
  TextLine line;
  line.letterHeight = 12;
  std::vector<Symbol> symbols = symbolsOf("see the :func:` name` of it", 10);
  symbols[13].box.left -= 4;  // n
  correctSpaces({{&symbols, &line}});
  EXPECT_EQ(textOf(symbols), "see the :func:`name` of it");
}

TEST(Corrections, NarrowCharactersOfCodeAmidTextHaveNoSpacesBesideThem) {
  TextLine line;
  line.letterHeight = 12;
  const auto corrected = [&](int narrowBy) {
    std::vector<Symbol> symbols = symbolsOf("as a clippy. out to see");
    Symbol& i = symbols[5];
    i.box = {i.box.left + 3, 0, i.box.right - 3, 11};
    symbols[6].spaceBefore = true;  // p, behind a gap of 5.
    symbols[5].box.left -= narrowBy;
    correctSpaces({{&symbols, &line}});
    return textOf(symbols);
  };
  EXPECT_EQ(corrected(0), "as a clippy. out to see");
  EXPECT_EQ(corrected(5), "as a cli ppy. out to see") << "touching the letter before";
}

TEST(Corrections, StrokesThatGoOnBehindADescenderUnderlineToo) {
  TextLine line;
  line.letterHeight = 12;
  line.baseline = 12;
  std::vector<Glyph> glyphs{{{0, 0, 9, 11}}, {{-2, 14, 12, 14}}, {{14, 0, 20, 17}}, {{22, 14, 30, 14}}};
  EXPECT_TRUE(takeUnderscores(glyphs, line).empty());
  EXPECT_EQ(glyphs.size(), 2U);
}

TEST(Corrections, ShortUnderscoresSayHowManyALongerOneIs) {
  TextLine line;
  line.letterHeight = 12;
  line.baseline = 12;
  const auto inserted = [&](const std::vector<Glyph>& strokes, int shortest) {
    std::vector<Symbol> symbols;
    insertUnderscores(symbols, strokes, {}, line, shortest);
    std::string text;
    for (const Symbol& symbol : symbols) text += symbol.text;
    return text;
  };
  const Glyph single{{0, 14, 15, 14}};
  const Glyph twice{{40, 14, 71, 14}};
  EXPECT_EQ(inserted({single, twice}, 16), "___");
  EXPECT_EQ(inserted({{{0, 14, 11, 14}}, {{40, 14, 50, 14}}}, 11), "__");
  EXPECT_EQ(inserted({{{0, 14, 23, 14}}, {{40, 14, 62, 14}}}, 23), "____");
  EXPECT_EQ(inserted({twice}, 32), "___") << "by the height of the letters";
  EXPECT_EQ(inserted({twice}, 16), "__") << "another line has a shorter one";
  EXPECT_EQ(inserted({{{0, 14, 99, 14}}}, 50), "________") << "even the shortest of a form is several";
}

TEST(QuotationStrokes, TheSecondStrokeOfAMarkIsToldFromLettersThatItTouches) {
  const QuoteMark mark{{20, 2, 21, 6}, 1, false, true, 0, 1};
  const auto isClear = [&](std::initializer_list<PixelBox> letter) {
    GreyBitmap ink(60, 20, 0);
    fillBox(ink, mark.box, 255);
    for (const PixelBox& box : letter) fillBox(ink, box, 255);
    return hasClearTwin(mark, ink);
  };
  EXPECT_TRUE(isClear({{17, 2, 18, 6}, {10, 7, 16, 8}, {10, 7, 11, 14}})) << "above the arm of an r";
  EXPECT_TRUE(isClear({{23, 2, 24, 6}, {26, 5, 36, 14}})) << "beside a small letter";
  EXPECT_FALSE(isClear({{23, 2, 24, 14}})) << "an l";
  EXPECT_FALSE(isClear({{23, 2, 34, 3}, {28, 4, 29, 14}, {23, 4, 24, 5}})) << "a T with serifs";
  EXPECT_FALSE(isClear({{27, 2, 28, 6}})) << "far away";
  // The ink at the left edge is of the rows below, not beyond the right one.
  GreyBitmap narrow(25, 20, 0);
  for (const PixelBox& box : {mark.box, PixelBox{23, 2, 24, 6}, PixelBox{0, 3, 0, 7}})
    fillBox(narrow, box, 255);
  EXPECT_TRUE(hasClearTwin(mark, narrow)) << "at the edge of the image";
}

TEST(Clusters, PointsBeneathQuotationMarksAreNoPartsOfThem) {
  const Glyph first{{10, 0, 11, 5}}, second{{14, 0, 15, 5}};
  const auto boxes = [](const std::vector<Glyph>& glyphs) {
    std::vector<int> lefts;
    for (const Cluster& cluster : clustersOf(glyphs)) lefts.push_back(cluster.box.left);
    return lefts;
  };
  using Lefts = std::vector<int>;
  EXPECT_EQ(boxes({first, {{13, 15, 15, 17}}, second}), (Lefts{10, 14, 13})) << "behind";
  EXPECT_EQ(boxes({{{9, 15, 11, 17}}, first, second}), (Lefts{9, 10, 14})) << "before";
  EXPECT_EQ(boxes({{{10, 0, 11, 11}}, {{10, 15, 11, 17}}}), (Lefts{10})) << "an exclamation mark";
  EXPECT_EQ(boxes({{{10, 6, 11, 8}}, {{10, 15, 11, 17}}}), (Lefts{10})) << "a colon";
}

TEST(Corrections, HyphensAreToldFromTildesAndDashesByTheirInk) {
  TextLine line;
  line.letterHeight = 12;
  GreyBitmap ink(60, 12, 0);
  fillBox(ink, {10, 5, 13, 6}, 255);
  fillBox(ink, {16, 5, 19, 6}, 255);
  fillBox(ink, {30, 4, 34, 5}, 255);
  fillBox(ink, {35, 5, 39, 6}, 255);
  const PixelBox hyphens{10, 5, 19, 6};
  const PixelBox tilde{30, 4, 39, 6};
  const auto corrected = [&](std::vector<Symbol> symbols) {
    correctDashes(symbols, ink, line);
    return textOf(symbols);
  };
  EXPECT_EQ(corrected({{"~", false, hyphens, 99, true}}), "--");
  EXPECT_EQ(corrected({{"~", false, tilde, 99, true}}), "~");
  EXPECT_EQ(corrected({{"—", false, {10, 5, 13, 6}, 99, true}, {">", false, {16, 0, 23, 11}, 99, true}}),
            "->");
  EXPECT_EQ(corrected({{"—", false, {10, 5, 13, 6}, 99, true}, {"-", false, {16, 5, 19, 6}, 99, true}}),
            "--");
  // Of one stroke the width tells, where it stands free or wasn't read as a hyphen.
  const auto beforeLetter = [&](const char* read, int width, bool isFree) {
    fillBox(ink, {42, 5, 58, 6}, 0);
    fillBox(ink, {42, 5, 41 + width, 6}, 255);
    return corrected({{"H", false, {30, 0, 37, 11}, 99, true},
                      {read, isFree, {42, 5, 41 + width, 6}, 99, true},
                      {"H", isFree, {70, 0, 77, 11}, 99, true}});
  };
  EXPECT_EQ(beforeLetter("—", 4, false), "H-H");
  EXPECT_EQ(beforeLetter("—", 8, true), "H – H");
  EXPECT_EQ(beforeLetter("–", 12, false), "H—H");
  EXPECT_EQ(beforeLetter("-", 8, true), "H – H");
  EXPECT_EQ(beforeLetter("-", 8, false), "H-H") << "a minus, or a wide hyphen";
}

/// Ink with letters in a line, as high as an x, and what else is given.
GreyBitmap lineWith(std::initializer_list<PixelBox> others, int letters = 6) {
  GreyBitmap ink(200, 40, 0);
  for (int i = 0; i < letters; ++i) fillBox(ink, {40 + 14 * i, 14, 47 + 14 * i, 25}, 255);
  for (const PixelBox& box : others) fillBox(ink, box, 255);
  return ink;
}

TEST(TextLayout, ALineStaysOneWhateverItBeginsWith) {
  const PixelBox star{2, 5, 12, 16};
  const PixelBox capital{20, 9, 30, 25};
  GreyBitmap ink = lineWith({star, capital});
  EXPECT_EQ(findTextLines(ink, Characters::alphabetic).size(), 1U);
}

TEST(TextLayout, ATextCursorAtTheEdgeIsNoBarHoweverHighTheBracketsAre) {
  const PixelBox bracket{130, 8, 133, 27};
  const PixelBox cursor{197, 8, 198, 28};
  const auto glyphs = [](GreyBitmap ink) {
    const auto lines = findTextLines(ink, Characters::alphabetic);
    return lines.empty() ? 0 : lines.front().glyphs.size();
  };
  EXPECT_EQ(glyphs(lineWith({bracket, cursor})), 7U);
  const PixelBox bar{2, 8, 3, 28};
  EXPECT_EQ(glyphs(lineWith({bar, bracket, cursor})), 9U) << "bars around a cell";
}

TEST(TextLayout, UnderlinesAreErasedFromTheLettersThatTheyTouch) {
  const PixelBox underline{36, 27, 130, 27};
  const PixelBox foot{54, 26, 61, 26};
  const PixelBox descender{97, 26, 100, 31};
  GreyBitmap ink = lineWith({underline, foot, descender});
  const auto lines = findTextLines(ink, Characters::alphabetic);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines.front().glyphs.size(), 6U);
  EXPECT_EQ(boxAround(lines.front().glyphs).bottom, 31) << "a letter that crosses it stays whole";
  GreyBitmap alone = lineWith({{130, 30, 190, 31}});
  findTextLines(alone, Characters::alphabetic);
  EXPECT_EQ(alone.at(150, 30), 255) << "underscores";
}

TEST(Columns, CommentsBehindLinesOfCodeAreNone) {
  // Words of five letters of several widths, behind the two signs of a comment if any.
  const auto lines = [](int left, bool areComments) {
    std::vector<TextLine> all;
    for (int row = 0; row < 4; ++row) {
      TextLine line;
      int x = left;
      for (int i = 0; i < 26; ++i) {
        const bool isSign = areComments && i < 2;
        const int width = isSign ? 6 : 4 + (3 * i + 2 * row) % 5;
        line.glyphs.push_back({{x, 20 * row, x + width - 1, 20 * row + 8}});
        x += width + (i % 5 == 1 ? 6 : 1);
      }
      line.box = boxAround(line.glyphs);
      all.push_back(line);
    }
    return all;
  };
  const Gutter gutter{60, 300};
  EXPECT_TRUE(areColumns(lines(0, false), lines(300, false), gutter, 9));
  EXPECT_FALSE(areColumns(lines(0, false), lines(300, true), gutter, 9));
}

TEST(CutLines, GoWhereTheSelectionShowsLessThanHalf) {
  const GreyBitmap ink(100, 60, 0);
  const auto line = [](int top, int bottom) {
    TextLine made;
    for (int x = 0; x < 80; x += 10) made.glyphs.push_back({{x, top, x + 6, bottom}});
    made.box = boxAround(made.glyphs);
    return made;
  };
  const auto tops = [&](std::vector<TextLine> lines) {
    dropCutLines(lines, ink);
    std::vector<int> left;
    for (const TextLine& each : lines) left.push_back(each.box.top);
    return left;
  };
  using Tops = std::vector<int>;
  EXPECT_EQ(tops({line(0, 3), line(8, 21), line(28, 41), line(55, 59)}), (Tops{8, 28})) << "slices";
  EXPECT_EQ(tops({line(8, 21), line(28, 41), line(54, 58)}), (Tops{8, 28, 54})) << "a caption within";
  EXPECT_EQ(tops({line(8, 21), line(28, 41), line(49, 59)}), (Tops{8, 28, 49})) << "most of a line";
  EXPECT_EQ(tops({line(0, 3), line(55, 59)}), (Tops{0, 55})) << "nothing to compare with";
  EXPECT_EQ(tops({line(0, 2), line(44, 59)}), (Tops{44})) << "a line that ends at the other edge";
  TextLine caption = line(54, 57);
  caption.glyphs[3].box.bottom = caption.box.bottom = 59;  // The foot of a letter.
  EXPECT_EQ(tops({line(8, 21), line(28, 41), caption}), (Tops{8, 28, 54})) << "a caption at the edge";
  TextLine underscores = line(1, 1);
  underscores.glyphs.push_back({{80, 0, 82, 2}});
  underscores.box.top = 0;
  EXPECT_EQ(tops({underscores, line(8, 21)}), (Tops{8})) << "with one descender";
  EXPECT_EQ(tops({line(4, 5), line(20, 33)}), (Tops{4, 20})) << "hyphens within";
  const auto single = [](const PixelBox& box) {
    TextLine made;
    made.glyphs = {{box}};
    made.box = box;
    return made;
  };
  EXPECT_EQ(tops({single({30, 12, 99, 59})}), Tops()) << "the corner of a frame";
  EXPECT_EQ(tops({single({80, 40, 99, 59})}), (Tops{40})) << "a letter cut out tightly";
  EXPECT_EQ(tops({single({60, 12, 99, 50})}), (Tops{12})) << "a letter at one side";
}

TEST(CutLines, LeaveNoSlicesInTheirNeighbours) {
  const GreyBitmap ink(100, 40, 0);
  const Glyph letter{{0, 10, 8, 21}}, tall{{10, 6, 12, 21}}, accent{{0, 4, 8, 6}}, above{{20, 0, 24, 1}},
      below{{20, 37, 24, 39}};
  const auto left = [&](std::vector<Glyph> glyphs) {
    std::vector<TextLine> lines{{glyphs, boxAround(glyphs), 12, 22}};
    dropCutLines(lines, ink);
    return lines.front().glyphs.size();
  };
  EXPECT_EQ(left({letter, tall, above, below}), 2U);
  EXPECT_EQ(left({letter, accent, above}), 3U) << "near the line's own marks";
}

TEST(Bullets, AreDiscsAtTheMiddleOfSmallLetters) {
  const auto read = [](int top) {
    GreyBitmap ink(40, 20, 0);
    const Glyph disc{{5, top, 8, top + 3}}, letter{{15, 8, 20, 13}};
    fillBox(ink, disc.box, 255);
    for (const int x : {5, 8})
      for (const int y : {top, top + 3}) ink.at(x, y) = 80;
    std::vector<Symbol> symbols{{"*", false, disc.box, 60}, {"x", true, letter.box, 95}};
    correctBullets(symbols, {disc, letter}, ink, {{disc, letter}, {5, 8, 20, 13}, 6, 14});
    return symbols.front().text;
  };
  EXPECT_EQ(read(8), "•") << "a pixel above the middle";
  EXPECT_EQ(read(9), "•");
  EXPECT_EQ(read(5), "*") << "a mark that stands high";
}

std::vector<std::string> plausible(std::vector<ReadLine> lines) {
  dropImplausible(lines);
  std::vector<std::string> texts;
  for (const ReadLine& line : lines) texts.push_back(line.text);
  return texts;
}

TEST(Plausibility, LettersInPicturesVouchForNothing) {
  using Texts = std::vector<std::string>;
  const ReadLine grain{"* = s", 54, 62, 5, 3, 0, 3};
  const ReadLine marks{"; ::", 99, 99, 4, 3, 3, 3};
  const ReadLine caption{"Sunset over the lake", 95, 98, 9, 17, 16, 17};
  std::vector<ReadLine> photograph(60, grain);
  photograph.push_back(marks);
  EXPECT_EQ(plausible(photograph), Texts{});
  photograph.insert(photograph.begin(), caption);
  photograph.insert(photograph.begin(), 20, grain);
  EXPECT_EQ(plausible(photograph), Texts{caption.text});
  EXPECT_EQ(plausible({caption, grain}).size(), 2U) << "a line of text vouches for another beside it";
  // Of a chart's line, of a row of icons, of an icon alone and of one beside others.
  EXPECT_EQ(plausible({{"SSS SS", 58, 95, 65, 5, 0, 1}}), Texts{});
  EXPECT_EQ(plausible({{"4 Q{> D® +", 16, 60, 26, 8, 5, 9}}), Texts{});
  EXPECT_EQ(plausible({{"B", 91, 99, 31, 1, 0, 1}}), Texts{});
  const ReadLine cross{"x", 92, 99, 27, 1, 1, 1};
  EXPECT_EQ(plausible({cross, {">@e", 36, 63, 27, 3, 0, 2}}), Texts{});
}

TEST(Plausibility, ShortTextsAreKept) {
  for (const ReadLine& line : std::vector<ReadLine>{{"B", 91, 99, 13, 1, 1, 1},
                                                    {"a", 91, 99, 6, 1, 0, 1},
                                                    {"42 ms", 45, 90, 9, 4, 2, 4},
                                                    {"@_region__", 55, 96, 8, 7, 0, 4},
                                                    {"A title with", 75, 63, 15, 10, 6, 10}})
    EXPECT_EQ(plausible({line}), std::vector<std::string>{line.text});
}

}  // namespace
}  // namespace lumiscan::desktop
