#pragma once

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/LineShapes.h"
#include "platform/linux/recognition/QuotationStrokes.h"

namespace lumiscan::desktop {

/// How likely a mark is to be curly, as the logarithm of the odds: by what the engine read, by its lean, by
/// where its weight is and by the shape of its strokes. None of them alone tells at the size of a few pixels.
/// `opens` says whether it stands before what it surrounds.
double curliness(const QuoteMark& mark, const Symbol& symbol, bool opens, LineShapes& shapes);

/// The same of a mark whose ink can't be told from a letter's, by what the engine read alone.
double curlinessAsRead(const Symbol& symbol);

/// Whether the marks of a line are curly, given the sum of their curliness and that of all others of the
/// page.
bool areCurly(double own, double others);

}  // namespace lumiscan::desktop
