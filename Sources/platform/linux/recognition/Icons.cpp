#include "platform/linux/recognition/Icons.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <utility>

#include "platform/linux/recognition/CodePoints.h"
#include "platform/linux/recognition/ConnectedPieces.h"
#include "platform/linux/recognition/Level.h"
#include "platform/linux/recognition/LineShapes.h"
#include "platform/linux/recognition/Spacing.h"

namespace lumiscan::desktop {

namespace {

using Glyphs = std::vector<Glyph>;

/// The text that an icon stands before or behind. Pixels.
struct Neighbour {
  int letterHeight;
  int top;        // Of its highest letter.
  int baseline;   // The row below the feet of most letters.
  int gapBeyond;  // From the icon to what is on its other side.
  bool isRough;   // Of words whose letters touch.
};

/// The metrics of what may be letters, of at least `least` pixels; nothing for fewer than `fewest` of them.
std::optional<Neighbour> metricsOf(const Glyphs& glyphs, int least, std::size_t fewest) {
  std::vector<int> heights, bottoms;
  int top = std::numeric_limits<int>::max();
  for (const Glyph& glyph : glyphs) {
    if (glyph.height() < least) continue;
    heights.push_back(glyph.height());
    bottoms.push_back(glyph.box.bottom);
    top = std::min(top, glyph.box.top);
  }
  if (heights.size() < fewest) return std::nullopt;
  return Neighbour{levelAt(std::move(heights), 0.5), top, levelAt(std::move(bottoms), 0.5) + 1, 0, false};
}

/// Glyphs from left to right, to be found by their place.
class Surroundings {
 public:
  Surroundings(Glyphs glyphs, int usual) : glyphs_(std::move(glyphs)), usual_(usual) {
    std::sort(glyphs_.begin(), glyphs_.end(),
              [](const Glyph& a, const Glyph& b) { return a.box.left < b.box.left; });
  }

  Glyphs within(const PixelBox& box) const {
    Glyphs found;
    for (auto glyph = from(box.left); glyph != glyphs_.end() && glyph->box.left <= box.right; ++glyph)
      if (box.contains(glyph->box)) found.push_back(*glyph);
    return found;
  }

  /// The text beside a block, where there is some on one side and nothing as near on the other.
  std::optional<Neighbour> textBeside(const PixelBox& box) const {
    const int reach = 16 * usual_;
    int gapBefore = reach, gapBehind = reach;
    Glyphs before, behind;
    for (auto glyph = from(box.left - reach); glyph != glyphs_.end() && glyph->box.left <= box.right + reach;
         ++glyph) {
      const PixelBox& other = glyph->box;
      if (glyph->middle() < box.top || glyph->middle() > box.bottom || box.contains(other)) continue;
      if (other.right < box.left) {
        gapBefore = std::min(gapBefore, box.left - other.right - 1);
        before.push_back(*glyph);
      } else if (other.left > box.right) {
        gapBehind = std::min(gapBehind, other.left - box.right - 1);
        behind.push_back(*glyph);
      } else {
        return std::nullopt;
      }
    }
    // The gap to the words is as wide as that between words, or wider.
    const auto fits = [this](int gap, int beyond) {
      return 2 * gap >= usual_ && 2 * gap <= 7 * usual_ && 2 * beyond >= 3 * usual_ && beyond > gap;
    };
    if (fits(gapBehind, gapBefore)) return neighbourOf(behind, gapBefore);
    if (!fits(gapBefore, gapBehind)) return std::nullopt;
    std::sort(before.begin(), before.end(),
              [](const Glyph& a, const Glyph& b) { return a.box.right > b.box.right; });
    return neighbourOf(before, gapBehind);
  }

 private:
  Glyphs::const_iterator from(int left) const {
    return std::lower_bound(glyphs_.begin(), glyphs_.end(), left,
                            [](const Glyph& glyph, int x) { return glyph.box.left < x; });
  }

  /// What the nearest glyphs say, up to a gap that is wider than between words.
  std::optional<Neighbour> neighbourOf(const Glyphs& nearestFirst, int gapBeyond) const {
    Glyphs run;
    PixelBox box = nearestFirst.front().box;
    for (const Glyph& glyph : nearestFirst) {
      const int gap = std::max(glyph.box.left - box.right, box.left - glyph.box.right);
      if (2 * gap >= 3 * usual_) break;
      run.push_back(glyph);
      box = boxAround({{box}, glyph});
    }
    const int least = (7 * usual_ + 9) / 10;
    std::optional<Neighbour> text = metricsOf(run, least, 3);
    const bool areTouching = std::any_of(run.begin(), run.end(), [this](const Glyph& glyph) {
      return glyph.width() >= 2 * usual_ && 10 * glyph.height() >= 9 * usual_;
    });
    if (!text && areTouching && (text = metricsOf(run, least, 1))) {
      text->letterHeight = usual_;
      text->isRough = true;
    }
    if (text) text->gapBeyond = gapBeyond;
    return text;
  }

  Glyphs glyphs_;
  int usual_;
};

/// Whether a block reaches further up or down than words could.
bool reachesOut(const PixelBox& box, const Neighbour& text) {
  const double letter = text.letterHeight;
  const double up = text.baseline - box.top;
  const double down = box.bottom + 1 - text.baseline;
  const double aboveText = text.top - box.top;
  const bool isHigher = up > 1.5 * letter + 1 && aboveText >= 0.1 * letter;
  // What is higher but stands on the line may be a capital with its accent.
  return (isHigher && 8 * down > letter) || down >= std::max(0.7 * letter, 0.5 * letter + 2);
}

/// Whether a block reaches a little further than capitals both up and down.
bool reachesAround(const PixelBox& box, const Neighbour& text) {
  const int least = std::max(1, (text.letterHeight + 5) / 10);
  return text.top - box.top >= least && box.bottom + 1 - text.baseline >= least;
}

/// Whether the middle of a block is about that of the letters, between that of small ones and of capitals.
/// That of two lines of words isn't.
bool isCentred(const PixelBox& box, const Neighbour& text) {
  const double middle = (box.top + box.bottom + 1) / 2.0;
  const double ofLetters = text.baseline - 0.6 * text.letterHeight;
  return std::abs(middle - ofLetters) <= 0.4 * text.letterHeight;
}

/// Whether some of the glyphs look like characters of such a line.
bool hasCharacters(const Glyphs& glyphs, const GreyBitmap& ink, int letterHeight, int baseline) {
  constexpr float likely = 0.8F;
  const TextLine line{glyphs, boxAround(glyphs), letterHeight, baseline};
  LineShapes shapes(ink, line, glyphs);
  for (std::size_t i = 0; i < shapes.clusters().size(); ++i) {
    const Classification& shape = shapes.classification(i);
    if (shape.best() != Classification::noCharacter && shape.bestProbability() >= likely) return true;
  }
  return false;
}

/// Whether the glyphs surely are a letter or a number, of whatever size: one that no icon looks like.
bool isLargeText(const Glyphs& glyphs, const GreyBitmap& ink, const PixelBox& box) {
  constexpr float sure = 0.97F;
  constexpr std::u32string_view likeIcons = U"CDOQVXcilovxI01";
  const TextLine line{glyphs, box, box.height() * 3 / 4, box.bottom + 1};
  LineShapes shapes(ink, line, glyphs);
  for (std::size_t i = 0; i < shapes.clusters().size(); ++i) {
    const Classification& shape = shapes.classification(i);
    const bool isCharacter = shape.bestProbability() >= sure && u_isalnum(static_cast<UChar32>(shape.best()));
    if (!isCharacter || likeIcons.find(shape.best()) != std::u32string_view::npos) return false;
  }
  return true;
}

enum class Kind { text, maybe, icon };

struct Judgement {
  MaybeIcon block;
  Kind kind = Kind::text;
  bool isBeside = false;  // Whether it stands where icons do: apart, before or behind the words of a line.
  bool isText = false;    // Whether it has characters that are as high as those of the line.
};

Judgement judge(const PixelBox& box, const Surroundings& surroundings, const GreyBitmap& ink, int usual) {
  Judgement judgement{{box, false, false}};
  const int width = box.width(), height = box.height();
  if (height > 4 * usual || width > 4 * usual) return judgement;
  const std::optional<Neighbour> text = surroundings.textBeside(box);
  const Glyphs glyphs = surroundings.within(box);
  if (!text || glyphs.empty()) return judgement;
  judgement.isBeside = 2 * text->gapBeyond >= 5 * usual && 2 * height > usual;  // A point is none.
  if (10 * height < 9 * usual || width > 2 * height || height > 2 * width) return judgement;
  const bool isOut = reachesOut(box, *text);
  const Kind maybe = judgement.isBeside || reachesAround(box, *text) ? Kind::maybe : Kind::text;
  const bool standsOnLine = 8 * std::abs(box.bottom + 1 - text->baseline) <= text->letterHeight;
  judgement.block.standsOnLine = standsOnLine;
  if (hasCharacters(glyphs, ink, text->letterHeight, text->baseline)) {
    judgement.block.looksLikeText = clustersOf(glyphs).size() == 1;
    judgement.isText = !judgement.block.looksLikeText || !reachesAround(box, *text);
    if (judgement.block.looksLikeText || (isOut && judgement.isBeside)) judgement.kind = maybe;
    return judgement;
  }
  // A number or a word in larger letters stands on the same line.
  judgement.isText = (standsOnLine && hasCharacters(glyphs, ink, height * 3 / 4, box.bottom + 1)) ||
                     isLargeText(glyphs, ink, box);
  if (judgement.isText) return judgement;
  constexpr int smallest = 7;  // Smaller letters touch, and have no heights of so few pixels to tell by.
  const bool isSure = isOut && isCentred(box, *text) && text->letterHeight >= smallest && !text->isRough;
  judgement.kind = isSure ? Kind::icon : maybe;
  return judgement;
}

/// Icons stand in columns: near one above or below that surely is an icon, what may be one is, and near two
/// that are or may be, all that stands apart from words and is no text.
void judgeColumns(std::vector<Judgement>& judgements, int usual) {
  struct Place {
    int x, y;  // Of the middle.
    Kind kind;
  };
  const auto placeOf = [](const Judgement& judgement) {
    const PixelBox& box = judgement.block.box;
    return Place{(box.left + box.right) / 2, (box.top + box.bottom) / 2, judgement.kind};
  };
  std::vector<Place> places;
  for (const Judgement& judgement : judgements)
    if (judgement.kind != Kind::text) places.push_back(placeOf(judgement));
  std::sort(places.begin(), places.end(), [](const Place& a, const Place& b) { return a.x < b.x; });
  const int aside = std::max(1, usual / 4);
  const int apart = 12 * usual;
  for (Judgement& judgement : judgements) {
    if (!judgement.isBeside || judgement.isText) continue;
    const Place here = placeOf(judgement);
    std::size_t icons = 0, candidates = 0;
    for (auto there = std::lower_bound(places.begin(), places.end(), here.x - aside,
                                       [](const Place&place, int x) { return place.x < x; });
         there != places.end() && there->x <= here.x + aside; ++there) {
      if (std::abs(there->y - here.y) > apart) continue;
      icons += there->kind == Kind::icon;
      ++candidates;
    }
    if (icons > 0 && candidates > 1) judgement.kind = Kind::icon;
  }
}

/// Whether a symbol is a letter whose shape the classifier doesn't know: it knows hardly any beyond ASCII.
bool isLetterBeyondShapes(const Symbol& symbol) {
  const char32_t letter = onlyCodePoint(symbol.text);
  return letter > 0x7F && u_isalpha(static_cast<UChar32>(letter));
}

/// Whether what was read where there may be an icon is no text.
bool isReadAsIcon(const MaybeIcon& icon, const std::vector<Symbol>& symbols) {
  constexpr std::string_view belowLine = "gjpqyJQ";
  std::size_t count = 0, matching = 0, letters = 0;
  bool hasDescender = icon.standsOnLine;
  bool hasUnknownLetter = false;
  double confidence = 100;
  for (const Symbol& symbol : symbols) {
    const int middle = (symbol.box.left + symbol.box.right) / 2;
    if (middle < icon.box.left || middle > icon.box.right) continue;
    ++count;
    matching += symbol.isLikely;
    letters += isWordCharacter(symbol);
    hasDescender |= symbol.text.size() == 1 && belowLine.find(symbol.text) != std::string_view::npos;
    hasUnknownLetter |= isLetterBeyondShapes(symbol);
    confidence = std::min(confidence, symbol.confidence);
  }
  constexpr double fair = 70;
  constexpr double good = 94;
  constexpr double sure = 97;
  if (count == 0 || (hasUnknownLetter && confidence >= fair)) return false;
  if (icon.looksLikeText) return count == 1 && matching == 0 && !icon.standsOnLine;
  // Letters that touch have no shape, but the engine reads them well.
  constexpr int small = 9;  // Pixels: higher letters have a shape.
  if (count == 1)
    return !icon.standsOnLine || (matching == 0 && icon.box.height() > small) ||
           (confidence < sure && matching + letters < 2);
  if (letters < count) return confidence < sure;
  if (!hasDescender && 2 * matching < count && count <= 3 && icon.box.height() > small) return true;
  return confidence < (count == 2 && !icon.standsOnLine ? good : fair);
}

void eraseWithin(Glyphs& glyphs, const std::vector<PixelBox>& boxes) {
  std::erase_if(glyphs, [&](const Glyph& glyph) {
    return std::any_of(boxes.begin(), boxes.end(),
                       [&](const PixelBox& box) { return box.contains(glyph.box); });
  });
}

}  // namespace

std::vector<MaybeIcon> takeIcons(Glyphs& glyphs, const GreyBitmap& ink, int usual) {
  const Surroundings surroundings(glyphs, usual);
  std::vector<PixelBox> boxes;
  for (const Glyph& glyph : glyphs) boxes.push_back(glyph.box);
  std::vector<Judgement> judgements;
  for (const PixelBox& block : joinedWhereNear(boxes, std::max(1, usual / 3), ink))
    judgements.push_back(judge(block, surroundings, ink, usual));
  judgeColumns(judgements, usual);
  std::vector<PixelBox> icons;
  std::vector<MaybeIcon> others;
  for (const Judgement& judgement : judgements) {
    if (judgement.kind == Kind::icon) icons.push_back(judgement.block.box);
    if (judgement.kind == Kind::maybe) others.push_back(judgement.block);
  }
  if (!icons.empty()) eraseWithin(glyphs, icons);
  return others;
}

std::optional<TextLine> withoutIcons(const TextLine& line, const std::vector<Symbol>& symbols) {
  if (line.cells) return std::nullopt;  // Code has hardly any, but many a sign that stands apart.
  std::vector<PixelBox> icons;
  for (const MaybeIcon& icon : line.maybeIcons)
    if (isReadAsIcon(icon, symbols)) icons.push_back(icon.box);
  if (icons.empty()) return std::nullopt;
  TextLine rest = line;
  rest.maybeIcons.clear();
  eraseWithin(rest.glyphs, icons);
  const auto metrics = metricsOf(rest.glyphs, (3 * line.letterHeight + 4) / 5, 1);
  if (!metrics) return std::nullopt;
  rest.box = boxAround(rest.glyphs);
  rest.letterHeight = metrics->letterHeight;
  rest.baseline = metrics->baseline;
  return rest;
}

}  // namespace lumiscan::desktop
