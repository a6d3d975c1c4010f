#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// What an engine is loaded for.
struct EngineKey {
  std::vector<std::string> names;  ///< Of trained data, in order of preference.
  bool dictionaries = true;        ///< Whether readings that are words are preferred.
  auto operator<=>(const EngineKey&) const = default;
};

/// A character as it was read.
struct Symbol {
  std::string text;  ///< UTF-8; usually one code point.
  bool spaceBefore = false;
  PixelBox box;            ///< About where it is.
  double confidence = 0;   ///< The engine's, from 0 to 100.
  bool hasOwnInk = false;  ///< Whether the box is that of its ink, and the ink no other's.
  bool isLikely = false;   ///< Whether its ink looks like it, as far as its shape alone tells.
  /// Of ink that it shares with others: whether it is the first of them, and the last.
  bool isFirstOfInk = false, isLastOfInk = false;

  /// Whether its box does so where its ink does.
  bool beginsWithInk() const { return hasOwnInk || isFirstOfInk; }
  bool endsWithInk() const { return hasOwnInk || isLastOfInk; }
};

struct LineReading {
  std::vector<Symbol> symbols;
  double confidence = 0;  ///< From 0 to 100.
};

/// One loaded Tesseract engine. Used by one thread at a time.
class Engine {
 public:
  /// Loads the trained data; takes some tens of milliseconds and megabytes a language.
  static platform::Result<std::shared_ptr<Engine>> load(const EngineKey& key,
                                                        const std::filesystem::path& folder);
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  /// Reads one line of black text on white.
  LineReading readLine(const GreyBitmap& image);

 private:
  struct Api;
  explicit Engine(std::unique_ptr<Api> api);
  std::unique_ptr<Api> api_;
};

}  // namespace lumiscan::desktop
