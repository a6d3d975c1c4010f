#pragma once

#include <optional>
#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// Takes the icons beside text out of an image's glyphs: what stands apart before or behind words, looks like
/// no character and reaches further up and down than words do, and what stands near it in a column of such.
/// Returns what stands as icons do, but may be text as well. `usual` is the usual height of a letter. Pixels
/// of the image.
std::vector<MaybeIcon> takeIcons(std::vector<Glyph>& glyphs, const GreyBitmap& ink, int usual);

/// The line without what turned out to be icons when it was read: the engine made signs of it, or letters
/// that it isn't sure of. Nothing where there is none, or nothing else.
std::optional<TextLine> withoutIcons(const TextLine& line, const std::vector<Symbol>& symbols);

}  // namespace lumiscan::desktop
