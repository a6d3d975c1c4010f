#include "platform/linux/recognition/LineReader.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <numeric>
#include <utility>

#include "platform/UTF8.h"
#include "platform/linux/recognition/Baselines.h"
#include "platform/linux/recognition/Bullets.h"
#include "platform/linux/recognition/Cells.h"
#include "platform/linux/recognition/Columns.h"
#include "platform/linux/recognition/Consensus.h"
#include "platform/linux/recognition/CutLines.h"
#include "platform/linux/recognition/FileTypes.h"
#include "platform/linux/recognition/GlyphCorrections.h"
#include "platform/linux/recognition/Icons.h"
#include "platform/linux/recognition/LanguageChoice.h"
#include "platform/linux/recognition/LineImage.h"
#include "platform/linux/recognition/LineShapes.h"
#include "platform/linux/recognition/LoneMarks.h"
#include "platform/linux/recognition/Numbers.h"
#include "platform/linux/recognition/Plausibility.h"
#include "platform/linux/recognition/QuotationMarks.h"
#include "platform/linux/recognition/Scripts.h"
#include "platform/linux/recognition/ShapeCorrections.h"
#include "platform/linux/recognition/Spacing.h"
#include "platform/linux/recognition/Superscripts.h"
#include "platform/linux/recognition/TextLayout.h"
#include "platform/linux/recognition/Voting.h"

namespace lumiscan::desktop {

namespace {

/// How sure an engine is of a line of words. Of single letters it is nearly as sure where it reads a script
/// that it doesn't know; but it knows that no words come of it.
double surenessOfWords(double ofSymbols, double ofWords) {
  constexpr double usual = 95;
  constexpr double weight = 0.1;
  return ofSymbols - weight * std::max(0.0, usual - ofWords);
}

double meanConfidence(const std::vector<Symbol>& symbols) {
  if (symbols.empty()) return 0;
  return std::accumulate(symbols.begin(), symbols.end(), 0.0,
                         [](double sum, const Symbol& symbol) { return sum + symbol.confidence; }) /
         static_cast<double>(symbols.size());
}

/// The confidence in a line of wide characters. It is one word to the engine, which is as sure of a word as
/// of its worst character; so the mean counts. That is 98 and more for text, and up to 93 for what is none.
double confidenceOfWide(double ofSymbols) {
  constexpr double spread = 5;
  return std::max(0.0, 100 - spread * (100 - ofSymbols));
}

constexpr Rendition usualRendition{36, 0.3};
constexpr Rendition otherRenditions[] = {{36, 0.2}, {30, 0.25}};
/// Now and then the engine finds nothing in what it reads well when it is drawn a little differently.
constexpr Rendition lastRenditions[] = {{33, 0.2}, {30, 0.25}, {26, 0.25}};

/// Whether a line is worth reading more than once: the engine isn't sure of a symbol, less so where it
/// doesn't look like it.
bool isDoubtful(const std::vector<Symbol>& symbols) {
  constexpr double hopeless = 60;  // Of a line that the selection cuts in half, or of no text.
  if (meanConfidence(symbols) < hopeless) return false;
  return std::any_of(symbols.begin(), symbols.end(), [](const Symbol& symbol) {
    return symbol.confidence < (symbol.isLikely ? 80 : 90) || (symbol.hasOwnInk && !symbol.isLikely);
  });
}

/// Characters of many pieces have no shape that the classifier knows; the engine must be sure of them itself.
void finishWide(LineDraft& draft) {
  constexpr double likely = 98;
  for (Symbol& symbol : draft.symbols) symbol.isLikely = symbol.confidence >= likely;
  draft.isWide = true;
  draft.confidence = confidenceOfWide(draft.sureness);
  draft.pieces = gutters(draft.letters, 0).size() + 1;
}

LineReading readRendition(Engine& engine, const GreyBitmap& ink, const LineDraft& draft,
                          const Rendition& rendition) {
  const LineImage image = drawLine(ink, *draft.line, draft.letters, rendition);
  LineReading reading = engine.readLine(image.bitmap);
  for (Symbol& symbol : reading.symbols) symbol.box = image.toImage(symbol.box);
  return reading;
}

LineDraft draftOf(Engine& engine, const GreyBitmap& ink, const TextLine& line) {
  LineDraft draft;
  draft.line = &line;
  draft.letters = line.glyphs;
  draft.underscores = takeUnderscores(draft.letters, line);
  // Strokes below nothing are a rule.
  if (draft.letters.empty()) return draft;
  draft.symbols = readLoneMarks(draft.letters, ink, line);
  if (!draft.symbols.empty()) {
    draft.pieces = draft.symbols.size();
    draft.confidence = draft.sureness = meanConfidence(draft.symbols);
    return draft;
  }
  LineReading reading = readRendition(engine, ink, draft, usualRendition);
  for (const Rendition& rendition : lastRenditions)
    if (reading.symbols.empty()) reading = readRendition(engine, ink, draft, rendition);
  draft.symbols = std::move(reading.symbols);
  draft.sureness = meanConfidence(draft.symbols);
  if (isWideText(draft.symbols)) {
    finishWide(draft);
    return draft;
  }
  draft.confidence = reading.confidence;
  draft.sureness = surenessOfWords(draft.sureness, reading.confidence);
  LineShapes shapes(ink, line, draft.letters);
  draft.pieces = shapes.clusters().size();
  std::vector<std::vector<Symbol>> readings{draft.symbols};
  correctByShape(draft.symbols, shapes);
  if (isDoubtful(draft.symbols)) {
    for (const Rendition& rendition : otherRenditions)
      readings.push_back(readRendition(engine, ink, draft, rendition).symbols);
    draft.symbols = vote(std::move(readings), shapes);
    correctByShape(draft.symbols, shapes);
  }
  if (std::optional<TextLine> rest = withoutIcons(line, draft.symbols)) {
    constexpr double tolerance = 5;
    const auto own = std::make_shared<const TextLine>(std::move(*rest));
    LineDraft better = draftOf(engine, ink, *own);
    better.ownLine = own;
    if (!better.symbols.empty() && better.sureness >= draft.sureness - tolerance) return better;
  }
  correctBullets(draft.symbols, draft.letters, ink, line);
  correctSuperscripts(draft.symbols, shapes, ink);
  return draft;
}

/// The drafts of all lines that hold anything, each in the language that fits it best.
std::vector<LineDraft> draftsOf(EngineCrew& crew, const std::vector<std::vector<std::string>>& languages,
                                const GreyBitmap& ink, const std::vector<TextLine>& lines) {
  std::vector<LineDraft> drafts =
      readInBestLanguage(lines, languages, [&](const std::vector<Question>& questions) {
        std::vector<LineDraft> answers(questions.size());
        std::vector<EngineCrew::Task> tasks;
        for (std::size_t i = 0; i < questions.size(); ++i) {
          const TextLine& line = lines[questions[i].line];
          tasks.push_back({questions[i].engine, line.glyphs.size(),
                           [&, i](Engine& engine) { answers[i] = draftOf(engine, ink, line); }});
        }
        crew.run(std::move(tasks));
        return answers;
      });
  std::erase_if(drafts, [](const LineDraft& draft) { return draft.symbols.empty(); });
  return drafts;
}

/// The width of the shortest underscore in the lines whose letters are about as high as those of a line.
int shortestUnderscore(const std::vector<LineDraft>& drafts, const TextLine& line) {
  int shortest = std::numeric_limits<int>::max();
  for (const LineDraft& draft : drafts)
    if (8 * std::abs(draft.line->letterHeight - line.letterHeight) <= line.letterHeight)
      for (const Glyph& underscore : draft.underscores) shortest = std::min(shortest, underscore.width());
  return shortest;
}

std::string join(const std::vector<Symbol>& symbols) {
  std::string text;
  for (const Symbol& symbol : symbols) text += (symbol.spaceBefore ? " " : "") + symbol.text;
  return platform::validUTF8(text);
}

/// Puts the pieces of lines that have several type sizes together.
void joinPieces(std::vector<ReadLine>& read, const std::vector<LineDraft>& drafts) {
  for (std::size_t i = read.size(); i-- > 1;) {
    const TextLine& line = *drafts[i - 1].line;
    const TextLine& next = *drafts[i].line;
    if (!line.whole || line.whole != next.whole) continue;
    const int gap = next.box.left - line.box.right - 1;
    ReadLine& first = read[i - 1];
    const ReadLine& second = read[i];
    // What leans to the right, as in $9/month, stands apart from the last figure's foot.
    const int least = second.text.starts_with("/") ? 6 : 3;
    const bool isSpace = 10 * gap >= least * std::min(line.letterHeight, next.letterHeight);
    const auto count = first.symbols + second.symbols;
    first.text += (isSpace ? " " : "") + second.text;
    first.confidence = std::min(first.confidence, second.confidence);
    first.sureness = (first.sureness * static_cast<double>(first.symbols) +
                      second.sureness * static_cast<double>(second.symbols)) /
                     static_cast<double>(count);
    first.letterHeight = std::min(first.letterHeight, second.letterHeight);
    first.symbols = count;
    first.likely += second.likely;
    first.pieces += second.pieces;
    read.erase(read.begin() + static_cast<std::ptrdiff_t>(i));
  }
}

}  // namespace

Reading readLines(EngineCrew& crew, const std::vector<std::vector<std::string>>& languages, GreyBitmap ink) {
  const bool wide = std::any_of(languages.begin(), languages.end(), hasWideCharacters);
  const bool cyrillic = std::any_of(languages.begin(), languages.end(), hasCyrillicLetters);
  std::vector<TextLine> lines =
      findTextLines(ink, wide ? Characters::wide : Characters::alphabetic, !cyrillic);
  dropCutLines(lines, ink);
  if (!wide) {
    findCells(lines, ink);
    settleBaselines(lines, ink);
  }
  std::vector<LineDraft> drafts = draftsOf(crew, languages, ink, lines);
  agree(drafts, ink);
  std::vector<SpacedLine> spaced;
  for (LineDraft& draft : drafts)
    if (!draft.isWide) spaced.push_back({&draft.symbols, draft.line});
  correctSpaces(spaced);
  std::vector<ReadLine> read;
  std::vector<QuotedLine> quoted;
  for (LineDraft& draft : drafts) {
    read.push_back({{},
                    draft.confidence,
                    meanConfidence(draft.symbols),
                    draft.line->letterHeight,
                    draft.symbols.size(),
                    likelyCount(draft.symbols),
                    draft.pieces});
    insertUnderscores(draft.symbols, draft.underscores, draft.letters, *draft.line,
                      shortestUnderscore(drafts, *draft.line));
    if (!draft.isWide) quoted.push_back({&draft.symbols, &draft.letters, draft.line});
  }
  correctQuotes(quoted, ink);
  for (std::size_t i = 0; i < drafts.size(); ++i) {
    std::vector<Symbol>& symbols = drafts[i].symbols;
    correctDashes(symbols, ink, *drafts[i].line);
    correctNumbers(symbols);
    correctFileTypes(symbols);
    if (drafts[i].isWide) correctWideText(symbols);
    read[i].text = join(symbols);
  }
  joinPieces(read, drafts);
  Reading reading;
  for (const ReadLine& line : read) {
    reading.symbols += line.symbols;
    reading.likely += line.likely;
  }
  dropImplausible(read);
  for (ReadLine& line : read) {
    reading.trust += line.confidence * static_cast<double>(line.symbols);
    reading.lines.push_back(std::move(line.text));
  }
  return reading;
}

}  // namespace lumiscan::desktop
