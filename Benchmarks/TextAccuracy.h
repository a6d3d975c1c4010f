#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumiscan::benchmark {

/// Lines of a text without their line feeds; a line feed at the end starts no further line.
std::vector<std::string> linesOf(std::string_view text);

/// How far readings are from the true texts, summed over a corpus. Texts are UTF-8.
class TextAccuracy {
 public:
  void add(std::string_view truth, std::string_view reading);

  bool empty() const { return lines_ == 0; }
  /// Code points to insert, delete or replace, divided by the code points of the true texts.
  double characterErrorRate() const;
  /// The share of the true lines that appear exactly, in their order.
  double exactLineShare() const;

 private:
  std::size_t errors_ = 0;
  std::size_t characters_ = 0;
  std::size_t exactLines_ = 0;
  std::size_t lines_ = 0;
};

}  // namespace lumiscan::benchmark
