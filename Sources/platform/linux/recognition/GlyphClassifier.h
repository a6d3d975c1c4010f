#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/linux/recognition/GlyphShape.h"

namespace lumiscan::desktop {

/// How likely a shape is each of the characters that the classifier knows.
class Classification {
 public:
  /// 0 where the shape is no single character.
  static constexpr char32_t noCharacter = 0;

  Classification(std::span<const std::uint32_t> characters, std::vector<float> probabilities);

  /// From 0 to 1; nothing for a character that the classifier doesn't know.
  float of(char32_t character) const;
  bool knows(char32_t character) const;
  char32_t best() const { return best_; }
  float bestProbability() const { return bestProbability_; }

 private:
  std::ptrdiff_t indexOf(char32_t character) const;

  std::span<const std::uint32_t> characters_;  // In ascending order.
  std::vector<float> probabilities_;
  char32_t best_ = noCharacter;
  float bestProbability_ = 0;
};

/// Whether a shape surely is a sign or a digit, and no letter or part of one.
bool isSurelySign(const Classification& shape);

/// Tells single characters by their shape alone: the signs of source code and lone letters, of which the
/// engine's models have seen little. A few small networks, whose weights are part of the program: where they
/// differ, neither is sure, so that what the engine read stands. Any thread.
class GlyphClassifier {
 public:
  static const GlyphClassifier& shared();

  Classification classify(const GlyphShape& shape) const;

 private:
  struct Layer {
    std::size_t inputs = 0;
    std::size_t outputs = 0;
    std::vector<float> weights;  // Input by input.
    std::vector<float> biases;
  };

  using Network = std::vector<Layer>;

  explicit GlyphClassifier(std::span<const std::byte> model);
  static std::vector<float> probabilities(const Network& network, std::vector<float> inputs);

  std::vector<std::uint32_t> characters_;
  std::vector<Network> networks_;
};

}  // namespace lumiscan::desktop
