#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace lumiscan::desktop {

/// The value below which a share of all values lies, from 0 to 1. Precondition: there are values.
template <typename Value>
Value levelAt(std::vector<Value> values, double share) {
  const auto nth = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + nth, values.end());
  return values[static_cast<std::size_t>(nth)];
}

}  // namespace lumiscan::desktop
