#pragma once

#include <cstddef>
#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/LineShapes.h"

namespace lumiscan::desktop {

/// Symbols and the clusters they were read from. Several symbols may touch in one cluster, one symbol may
/// have several clusters; ink that was not read has no symbol, and what was read where nothing is has no
/// cluster.
struct Match {
  std::size_t firstCluster, clusterCount;
  std::size_t firstSymbol, symbolCount;
};

/// Whether a letter has an arm beneath which a full stop behind it may stand. What stands there beneath
/// another letter is a part of it.
bool reachesOverPoint(char32_t letter);

/// Finds which symbol is which ink, by their order, by where the engine saw them, roughly, and by their
/// shape. Every cluster and every symbol, their boxes in pixels of the image, is in one match, from left to
/// right.
std::vector<Match> align(LineShapes& shapes, const std::vector<Symbol>& symbols);

}  // namespace lumiscan::desktop
