#include "engines/network/block.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace catalogcore::network {
namespace {

constexpr std::string_view kTag = "CATALNET";
constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kCheckedFrom = 20;
constexpr std::size_t kLayerHeader = 12;

constexpr std::size_t kMostInputs = 4;  // samples of a pixel
constexpr std::size_t kMostLayers = 32;
constexpr std::size_t kMostOutputs = 256;
constexpr std::size_t kMostKernel = 16;
constexpr std::size_t kMostStride = 16;
constexpr int kMostShift = 30;

// Reads numbers in order. After the end it returns 0, and IsShort is true.
class Reader {
 public:
  explicit Reader(std::span<const std::uint8_t> bytes) : left_(bytes) {}

  std::uint32_t Number(std::size_t size) {
    if (left_.size() < size) {
      isShort_ = true;
      left_ = {};
      return 0;
    }
    std::uint32_t value = 0;
    for (std::size_t i = size; i > 0; --i) value = value << 8U | left_[i - 1];
    left_ = left_.subspan(size);
    return value;
  }

  std::size_t Left() const { return left_.size(); }
  bool IsShort() const { return isShort_; }

 private:
  std::span<const std::uint8_t> left_;
  bool isShort_ = false;
};

bool IsHeaderValid(std::span<const std::uint8_t> block) {
  if (block.size() < kCheckedFrom || !std::equal(kTag.begin(), kTag.end(), block.begin())) return false;
  Reader reader(block.subspan(kTag.size()));
  if (reader.Number(4) != kVersion || reader.Number(4) != block.size()) return false;
  return reader.Number(4) == CheckSum(block.subspan(kCheckedFrom));
}

bool HasValidSizes(const Layer& layer, bool isLast) {
  return layer.kernel >= 1 && layer.kernel <= kMostKernel && layer.stride >= 1 && layer.stride <= kMostStride &&
         layer.padding <= layer.kernel / 2 && layer.outputs >= 1 && layer.outputs <= kMostOutputs &&
         layer.shift <= kMostShift && layer.maximum <= std::numeric_limits<std::int16_t>::max() &&
         (layer.maximum == 0) == isLast;
}

bool ReadValues(Reader& reader, Layer& layer) {
  const std::size_t weights = layer.outputs * layer.kernel * layer.kernel * layer.inputs;
  if (reader.Left() < 4 * layer.outputs + 2 * weights) return false;  // before memory of this size is allocated
  const std::int64_t half = layer.shift == 0 ? 0 : std::int64_t{1} << (layer.shift - 1);
  layer.biases.reserve(layer.outputs);
  for (std::size_t i = 0; i < layer.outputs; ++i) {
    const std::int64_t bias = static_cast<std::int32_t>(reader.Number(4)) + half;
    if (bias > std::numeric_limits<std::int32_t>::max()) return false;
    layer.biases.push_back(static_cast<std::int32_t>(bias));
  }
  layer.weights.reserve(weights);
  for (std::size_t i = 0; i < weights; ++i) layer.weights.push_back(static_cast<std::int16_t>(reader.Number(2)));
  return true;
}

// Whether no sum, and no part of a sum, leaves 32 bits if the inputs are at most `greatest`.
bool AreSumsBounded(const Layer& layer, std::int32_t greatest) {
  const std::size_t length = layer.weights.size() / layer.outputs;
  for (std::size_t output = 0; output < layer.outputs; ++output) {
    std::int64_t sum = std::abs(std::int64_t{layer.biases[output]});
    for (std::size_t i = 0; i < length; ++i) {
      sum += std::int64_t{greatest} * std::abs(std::int32_t{layer.weights[output * length + i]});
    }
    if (sum > std::numeric_limits<std::int32_t>::max()) return false;
  }
  return true;
}

bool ReadLayer(Reader& reader, bool isLast, Layer& layer) {
  if (reader.Left() < kLayerHeader) return false;
  layer.kernel = reader.Number(1);
  layer.stride = reader.Number(1);
  layer.padding = reader.Number(1);
  const std::uint32_t flags = reader.Number(1);
  layer.isAveraged = flags == 1;
  layer.outputs = reader.Number(2);
  layer.maximum = static_cast<std::int32_t>(reader.Number(2));
  layer.shift = static_cast<int>(reader.Number(2));
  return reader.Number(2) == 0 && flags <= 1 && HasValidSizes(layer, isLast) && ReadValues(reader, layer);
}

}  // namespace

std::optional<Description> ReadBlock(std::span<const std::uint8_t> block) {
  if (!IsHeaderValid(block)) return std::nullopt;
  Reader reader(block.subspan(kCheckedFrom));
  Description description;
  description.inputs = reader.Number(2);
  const std::size_t layers = reader.Number(2);
  description.answerBits = static_cast<int>(reader.Number(2));
  if (reader.Number(2) != 0 || description.inputs < 1 || description.inputs > kMostInputs) return std::nullopt;
  if (layers < 1 || layers > kMostLayers || description.answerBits > kMostShift) return std::nullopt;

  std::size_t inputs = description.inputs;
  std::int32_t greatest = kInputMiddle;
  for (std::size_t i = 0; i < layers; ++i) {
    Layer& layer = description.layers.emplace_back();
    layer.inputs = inputs;
    if (!ReadLayer(reader, i + 1 == layers, layer) || !AreSumsBounded(layer, greatest)) return std::nullopt;
    inputs = layer.outputs;
    greatest = layer.maximum;
  }
  if (reader.IsShort() || reader.Left() != 0) return std::nullopt;
  return description;
}

std::uint32_t CheckSum(std::span<const std::uint8_t> bytes) {
  constexpr std::uint32_t kModulus = 65521;
  std::uint32_t low = 1;
  std::uint32_t high = 0;
  for (const std::uint8_t byte : bytes) {
    low += byte;
    if (low >= kModulus) low -= kModulus;
    high += low;
    if (high >= kModulus) high -= kModulus;
  }
  return high << 16U | low;
}

}  // namespace catalogcore::network
