#include "platform/linux/recognition/PictureLetters.h"

#include <algorithm>
#include <map>

namespace lumiscan::desktop {

namespace {

constexpr std::uint8_t colorItself = 255;  // The closeness of pixels of the colour.

bool isNoLargerThanLetter(const Surface& surface) {
  constexpr int mostHeight = 160;
  constexpr int mostWidth = 320;  // Of letters that touch.
  return surface.height() <= mostHeight && surface.width() <= mostWidth;
}

/// The largest values within a distance from each pixel, along rows and columns.
GreyBitmap dilated(const GreyBitmap& bitmap, int distance) {
  GreyBitmap along = bitmap;
  for (int y = 0; y < bitmap.height; ++y)
    for (int x = 0; x < bitmap.width; ++x)
      for (int u = std::max(0, x - distance); u <= std::min(bitmap.width - 1, x + distance); ++u)
        along.at(x, y) = std::max(along.at(x, y), bitmap.at(u, y));
  GreyBitmap result = along;
  for (int y = 0; y < bitmap.height; ++y)
    for (int v = std::max(0, y - distance); v <= std::min(bitmap.height - 1, y + distance); ++v)
      for (int x = 0; x < bitmap.width; ++x) result.at(x, y) = std::max(result.at(x, y), along.at(x, v));
  return result;
}

/// How near the pixels are to a colour, 0 to 255, compared with what is furthest from it around them.
GreyBitmap closenessOf(const GreyBitmap& distances) {
  constexpr int around = 3;
  constexpr int leastContrast = 40;
  constexpr int sameColor = 10;
  constexpr int ofPicture = 90;  // As near the picture may be beside a dark outline.
  const GreyBitmap furthest = dilated(distances, around);
  GreyBitmap closeness(distances.width, distances.height, 0);
  for (std::size_t i = 0; i < distances.pixels.size(); ++i) {
    const int own = distances.pixels[i];
    if (own <= sameColor) {
      closeness.pixels[i] = colorItself;
    } else if (furthest.pixels[i] >= leastContrast) {
      const int nearness = 255 - 255 * own / furthest.pixels[i];
      closeness.pixels[i] = static_cast<std::uint8_t>(
          std::clamp(255 * (nearness - ofPicture) / (255 - ofPicture), 0, colorItself - 1));
    }
  }
  return closeness;
}

/// Whether a pixel is nearer to the colour than what is on either side of it.
bool isOnStroke(const GreyBitmap& distances, int x, int y) {
  constexpr int away = 2;
  constexpr int contrast = 48;
  const auto isFurther = [&](int dx, int dy) {
    return distances.contains(x + dx, y + dy) &&
           distances.at(x + dx, y + dy) >= distances.at(x, y) + contrast;
  };
  return (isFurther(-away, 0) && isFurther(away, 0)) || (isFurther(0, -away) && isFurther(0, away));
}

}  // namespace

/// What is around a surface, or several, beyond the smoothed edge.
struct PictureLetters::Surroundings {
  std::uint32_t places = 0;
  std::uint32_t contrary = 0;  // So many of the places have quite another colour,
  std::uint32_t onGround = 0;  // so many of which are of a ground.

  void add(const Surroundings& more) {
    places += more.places;
    contrary += more.contrary;
    onGround += more.onGround;
  }
  bool areContrary() const { return places > 0 && 2 * contrary >= places; }
  bool areNoGround() const { return 5 * onGround <= contrary; }
};

PictureLetters::PictureLetters(const Surfaces& surfaces, const Grounds& grounds)
    : surfaces_(surfaces), grounds_(grounds) {}

std::vector<std::uint32_t> PictureLetters::colors() const {
  constexpr std::size_t mostColors = 2;  // Of letters and of their outlines.
  constexpr std::size_t fewestSurfaces = 4;
  /// Surfaces of nearly one colour.
  struct Group {
    std::uint32_t color = 0;  // Of the largest of them,
    std::size_t largest = 0;  // which has so many pixels.
    std::size_t surfaces = 0;
    Surroundings around;
  };
  const std::vector<Surroundings> around = surroundings();
  std::map<std::uint32_t, Group> groups;
  for (std::uint32_t label = 0; label < surfaces_.count(); ++label) {
    const Surface& surface = surfaces_[label];
    if (surface.area < 4 || surface.height() < 3 || !around[label].areContrary()) continue;
    Group& group = groups[surface.color >> 4 & 0x0F0F0FU];
    ++group.surfaces;
    group.around.add(around[label]);
    if (surface.area > group.largest) {
      group.largest = surface.area;
      group.color = surface.color;
    }
  }
  std::vector<Group> most;
  for (const auto& [key, group] : groups)
    if (group.surfaces >= fewestSurfaces) most.push_back(group);
  std::stable_sort(most.begin(), most.end(),
                   [](const Group& a, const Group& b) { return a.surfaces > b.surfaces; });
  std::vector<std::uint32_t> colors;
  for (std::size_t i = 0; i < std::min(most.size(), mostColors); ++i)
    if (most[i].around.areNoGround()) colors.push_back(most[i].color);
  return colors;
}

/// Of each surface that may be a letter by its size: what is around it.
std::vector<PictureLetters::Surroundings> PictureLetters::surroundings() const {
  constexpr int away = 3;
  std::vector<Surroundings> result(surfaces_.count());
  for (std::size_t i = 0; i < surfaces_.pixelCount(); ++i) {
    if (!isWithinLetterAt(i)) continue;
    const std::uint32_t label = surfaces_.labelAt(i);
    const int x = surfaces_.xOf(i);
    const int y = surfaces_.yOf(i);
    const auto look = [&](int u, int v) {
      if (u < 0 || v < 0 || u >= surfaces_.width() || v >= surfaces_.height()) return;
      const std::size_t place = surfaces_.index(u, v);
      if (surfaces_.labelAt(place) == label) return;
      constexpr int leastContrast = 60;
      Surroundings& around = result[label];
      ++around.places;
      if (colorDistance(surfaces_.colors()[place], surfaces_[label].color) < leastContrast) return;
      ++around.contrary;
      around.onGround += grounds_.isGround(surfaces_.labelAt(place));
    };
    look(x - away, y);
    look(x + away, y);
    look(x, y - away);
    look(x, y + away);
  }
  return result;
}

bool PictureLetters::isWithinLetterAt(std::size_t pixel) const {
  const std::uint32_t label = surfaces_.labelAt(pixel);
  return !grounds_.isGround(label) && isNoLargerThanLetter(surfaces_[label]);
}

GreyBitmap PictureLetters::distancesTo(std::uint32_t color) const {
  GreyBitmap distances(surfaces_.width(), surfaces_.height(), 0);
  for (std::size_t i = 0; i < surfaces_.pixelCount(); ++i)
    distances.pixels[i] = colorDistance(surfaces_.colors()[i], color);
  return distances;
}

GreyBitmap PictureLetters::ink(std::uint32_t color, Strokes strokes) const {
  constexpr int mostEdge = 3;  // Pixels around the pure colour: smoothed edges, the ends of thin strokes.
  constexpr int leastOfEdge = 64;
  constexpr int leastOfStroke = 112;
  const GreyBitmap distances = distancesTo(color);
  const GreyBitmap closeness = closenessOf(distances);
  const auto isOfLetter = [&](std::size_t i) {
    if (closeness.pixels[i] < leastOfStroke || !isWithinLetterAt(i)) return false;
    return closeness.pixels[i] == colorItself ||
           (strokes == Strokes::any && isOnStroke(distances, surfaces_.xOf(i), surfaces_.yOf(i)));
  };
  GreyBitmap result(surfaces_.width(), surfaces_.height(), 0);
  std::vector<std::size_t> front;
  for (std::size_t i = 0; i < surfaces_.pixelCount(); ++i)
    if (isOfLetter(i)) front.push_back(i);
  for (const std::size_t i : front) result.pixels[i] = closeness.pixels[i];
  for (int edge = 0; edge < mostEdge; ++edge) {
    std::vector<std::size_t> next;
    for (const std::size_t i : front)
      surfaces_.visitNeighbours(i, [&](std::size_t n) {
        constexpr int fluctuation = 8;
        // Beyond an outline or a shadow the picture may be nearer to the colour again.
        if (result.pixels[n] > 0 || closeness.pixels[n] > result.pixels[i] + fluctuation) return;
        result.pixels[n] = closeness.pixels[n];
        if (closeness.pixels[n] >= leastOfEdge) next.push_back(n);
      });
    front.swap(next);
  }
  return result;
}

}  // namespace lumiscan::desktop
