#include "platform/linux/recognition/GlyphClassifier.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

// The file glyphs.model, which Benchmarks/glyphs/train-classifier describes.
extern "C" const std::byte lumiscan_glyph_model[];      // NOLINT(readability-identifier-naming)
extern "C" const std::byte lumiscan_glyph_model_end[];  // NOLINT(readability-identifier-naming)

namespace lumiscan::desktop {

namespace {

static_assert(std::endian::native == std::endian::little, "The model's numbers are little-endian");

/// Takes numbers off the front of the model.
class Reader {
 public:
  explicit Reader(std::span<const std::byte> bytes) : rest_(bytes) {}

  template <typename Number>
  std::vector<Number> take(std::size_t count) {
    std::vector<Number> numbers(count);
    std::memcpy(numbers.data(), rest_.data(), count * sizeof(Number));
    rest_ = rest_.subspan(count * sizeof(Number));
    return numbers;
  }

 private:
  std::span<const std::byte> rest_;
};

}  // namespace

Classification::Classification(std::span<const std::uint32_t> characters, std::vector<float> probabilities)
    : characters_(characters), probabilities_(std::move(probabilities)) {
  const auto most = std::max_element(probabilities_.begin(), probabilities_.end());
  best_ = characters_[static_cast<std::size_t>(most - probabilities_.begin())];
  bestProbability_ = *most;
}

std::ptrdiff_t Classification::indexOf(char32_t character) const {
  const auto found = std::lower_bound(characters_.begin(), characters_.end(), character);
  return found != characters_.end() && *found == character ? found - characters_.begin() : -1;
}

bool Classification::knows(char32_t character) const { return indexOf(character) >= 0; }

float Classification::of(char32_t character) const {
  const std::ptrdiff_t index = indexOf(character);
  return index < 0 ? 0 : probabilities_[static_cast<std::size_t>(index)];
}

const GlyphClassifier& GlyphClassifier::shared() {
  static const GlyphClassifier classifier({lumiscan_glyph_model, lumiscan_glyph_model_end});
  return classifier;
}

GlyphClassifier::GlyphClassifier(std::span<const std::byte> model) {
  constexpr std::size_t signature = 4;
  Reader reader(model.subspan(signature));
  const std::vector<std::uint32_t> counts = reader.take<std::uint32_t>(3);
  characters_ = reader.take<std::uint32_t>(counts[0]);
  networks_.resize(counts[1]);
  for (Network& network : networks_) {
    for (std::uint32_t i = 0; i < counts[2]; ++i) {
      const std::vector<std::uint32_t> size = reader.take<std::uint32_t>(2);
      Layer layer{size[0], size[1], {}, {}};
      const std::vector<float> factors = reader.take<float>(layer.outputs);
      layer.biases = reader.take<float>(layer.outputs);
      const std::vector<std::int8_t> bytes = reader.take<std::int8_t>(layer.inputs * layer.outputs);
      layer.weights.resize(bytes.size());
      for (std::size_t k = 0; k < bytes.size(); ++k)
        layer.weights[k] = static_cast<float>(bytes[k]) * factors[k % layer.outputs];
      network.push_back(std::move(layer));
    }
  }
}

std::vector<float> GlyphClassifier::probabilities(const Network& network, std::vector<float> values) {
  for (const Layer& layer : network) {
    std::vector<float> sums = layer.biases;
    for (std::size_t i = 0; i < layer.inputs; ++i) {
      const float value = values[i];
      if (value <= 0) continue;  // No ink, or a unit that is silent.
      const float* const weights = layer.weights.data() + i * layer.outputs;
      for (std::size_t k = 0; k < layer.outputs; ++k) sums[k] += value * weights[k];
    }
    values = std::move(sums);
  }
  const float most = *std::max_element(values.begin(), values.end());
  float total = 0;
  for (float& value : values) total += value = std::exp(value - most);
  for (float& value : values) value /= total;
  return values;
}

Classification GlyphClassifier::classify(const GlyphShape& shape) const {
  std::vector<float> inputs(shape.inputs.size());
  std::transform(shape.inputs.begin(), shape.inputs.end(), inputs.begin(),
                 [](std::uint8_t input) { return static_cast<float>(input) / 255.0F; });
  std::vector<float> mean(characters_.size());
  for (const Network& network : networks_) {
    const std::vector<float> each = probabilities(network, inputs);
    for (std::size_t i = 0; i < mean.size(); ++i) mean[i] += each[i] / static_cast<float>(networks_.size());
  }
  return {characters_, std::move(mean)};
}

bool isSurelySign(const Classification& shape) {
  constexpr float sure = 0.9F;
  const char32_t best = shape.best();
  if (best == Classification::noCharacter || u_isalpha(static_cast<UChar32>(best))) return false;
  // Of a few pixels, points and commas are hard to tell apart.
  const bool isPoint = best == U'.' || best == U',';
  return (isPoint ? shape.of(U'.') + shape.of(U',') : shape.bestProbability()) >= sure;
}

}  // namespace lumiscan::desktop
