#pragma once

#include <string>
#include <utility>
#include <vector>

namespace lumiscan::testing {

/// What the program did that the user or the next start of the program can tell, across all parts of the
/// desktop, in order: "pasteboard TEXT", "store KEY", "play SOUND", "beep", "show SYMBOL TITLE / PREVIEW",
/// "speak LANGUAGE TEXT", "stop speaking".
class Effects {
 public:
  void add(std::string effect) { list_.push_back(std::move(effect)); }
  /// The effects since this was last called.
  std::vector<std::string> take() { return std::exchange(list_, {}); }

 private:
  std::vector<std::string> list_;
};

}  // namespace lumiscan::testing
