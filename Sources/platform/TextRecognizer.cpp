#include "platform/TextRecognizer.h"

#include <algorithm>

namespace lumiscan::platform {

std::vector<std::string> TextObservation::topCandidates(std::size_t count) const {
  const auto end = candidates.begin() + static_cast<std::ptrdiff_t>(std::min(count, candidates.size()));
  return {candidates.begin(), end};
}

}  // namespace lumiscan::platform
