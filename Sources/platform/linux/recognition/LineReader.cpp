#include "platform/linux/recognition/LineReader.h"

#include <utility>

#include "platform/linux/recognition/GlyphCorrections.h"
#include "platform/linux/recognition/LineImage.h"
#include "platform/linux/recognition/LineShapes.h"
#include "platform/linux/recognition/Plausibility.h"
#include "platform/linux/recognition/ShapeCorrections.h"
#include "platform/linux/recognition/Spacing.h"
#include "platform/linux/recognition/TextLayout.h"
#include "platform/linux/recognition/Utf8.h"

namespace lumiscan::desktop {

namespace {

/// A line between the engine and its text.
struct Draft {
  TextLine line;
  std::vector<Glyph> letters;      // Of the line, without
  std::vector<Glyph> underscores;  // these.
  std::vector<Symbol> symbols;
  double confidence = 0;
  std::size_t pieces = 0;  // Side by side.
};

Draft draftOf(Engine& engine, const GreyBitmap& ink, TextLine line) {
  Draft draft;
  draft.letters = line.glyphs;
  draft.underscores = takeUnderscores(draft.letters, line);
  draft.line = std::move(line);
  // Strokes below nothing are a rule.
  if (draft.letters.empty()) return draft;
  const LineImage image = drawLine(ink, draft.line, draft.letters);
  LineReading reading = engine.readLine(image.bitmap);
  for (Symbol& symbol : reading.symbols) symbol.box = image.toImage(symbol.box);
  draft.symbols = std::move(reading.symbols);
  draft.confidence = reading.confidence;
  LineShapes shapes(ink, draft.line, draft.letters);
  draft.pieces = shapes.clusters().size();
  correctByShape(draft.symbols, shapes);
  return draft;
}

std::string join(const std::vector<Symbol>& symbols) {
  std::string text;
  for (const Symbol& symbol : symbols) text += (symbol.spaceBefore ? " " : "") + symbol.text;
  return repairedUtf8(text);
}

}  // namespace

std::vector<std::string> readLines(Engine& engine, const GreyBitmap& ink) {
  std::vector<Draft> drafts;
  for (TextLine& line : findTextLines(ink)) {
    drafts.push_back(draftOf(engine, ink, std::move(line)));
    if (drafts.back().symbols.empty()) drafts.pop_back();
  }
  std::vector<SpacedLine> spaced;
  for (Draft& draft : drafts) spaced.push_back({&draft.symbols, draft.line.letterHeight});
  correctSpaces(spaced);
  std::vector<ReadLine> lines;
  for (Draft& draft : drafts) {
    ReadLine line{{},
                  draft.confidence,
                  draft.line.letterHeight,
                  draft.symbols.size(),
                  likelyCount(draft.symbols),
                  draft.pieces};
    insertUnderscores(draft.symbols, draft.underscores, draft.letters, draft.line.letterHeight);
    correctQuotes(draft.symbols, draft.letters, ink, draft.line);
    correctDashes(draft.symbols, ink, draft.line);
    correctHexadecimals(draft.symbols);
    line.text = join(draft.symbols);
    lines.push_back(std::move(line));
  }
  dropImplausible(lines);
  std::vector<std::string> texts;
  for (ReadLine& line : lines) texts.push_back(std::move(line.text));
  return texts;
}

}  // namespace lumiscan::desktop
