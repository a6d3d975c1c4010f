#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// A line as an engine read it, before its spaces and marks are mended.
struct LineDraft {
  const TextLine* line = nullptr;
  std::shared_ptr<const TextLine> ownLine;  // That line, where it is but a part of what was found.
  std::vector<Glyph> letters;               // Of the line, without
  std::vector<Glyph> underscores;           // these.
  std::vector<Symbol> symbols;              // Their boxes in pixels of the image.
  std::size_t pieces = 0;                   // Of ink that stand side by side.
  bool isWide = false;                      // Of Chinese, Japanese or Korean characters.
  double confidence = 0;                    // In its being text, from 0 to 100.
  double sureness = 0;                      // Of the engine, to compare with others, up to 100.
};

}  // namespace lumiscan::desktop
