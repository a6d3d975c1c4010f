#pragma once

#include <cstdint>
#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"
#include "platform/linux/recognition/Grounds.h"
#include "platform/linux/recognition/Surfaces.h"

namespace lumiscan::desktop {

/// Letters of one colour that stand on no ground: on a photograph, or with outlines or shadows of their own.
/// Keeps references to the surfaces and the grounds.
class PictureLetters {
 public:
  enum class Strokes {
    ofColor,  ///< Those that somewhere have the pure colour.
    any,  ///< Also thin ones that are smoothed all over; what lies between two outlines may look like them.
  };

  PictureLetters(const Surfaces& surfaces, const Grounds& grounds);

  /// The colours that such letters may have, 0x00RRGGBB, the likelier first. None in a picture whose letters
  /// stand on its grounds.
  std::vector<std::uint32_t> colors() const;
  /// The ink of the letters of a colour, 255 for the colour itself.
  GreyBitmap ink(std::uint32_t color, Strokes strokes) const;

 private:
  struct Surroundings;

  std::vector<Surroundings> surroundings() const;
  bool isWithinLetterAt(std::size_t pixel) const;
  GreyBitmap distancesTo(std::uint32_t color) const;

  const Surfaces& surfaces_;
  const Grounds& grounds_;
};

}  // namespace lumiscan::desktop
