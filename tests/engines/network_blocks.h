// Blocks of random networks, for tests and the fuzzer.
#ifndef CATALOGCORE_TESTS_ENGINES_NETWORK_BLOCKS_H_
#define CATALOGCORE_TESTS_ENGINES_NETWORK_BLOCKS_H_

#include <algorithm>
#include <cstring>
#include <random>
#include <string_view>
#include <vector>

#include "engines/network/network.h"

namespace catalogcore {

using BlockBytes = std::vector<std::uint8_t>;

inline void Append(BlockBytes& block, std::uint32_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) block.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

inline std::vector<std::int64_t> AllAnswers(const network::Answers& answers) {
  std::vector<std::int64_t> values;
  for (std::size_t place = 0; place < answers.rows * answers.columns; ++place) {
    const auto some = answers.At(place / answers.columns, place % answers.columns);
    values.insert(values.end(), some.begin(), some.end());
  }
  return values;
}

// Gives the block a valid tag, version, size and check sum.
inline void Seal(BlockBytes& block) {
  block.resize(std::max(block.size(), std::size_t{28}));
  BlockBytes header;
  for (const char letter : std::string_view("CATALNET")) Append(header, static_cast<std::uint8_t>(letter), 1);
  Append(header, 1, 4);
  Append(header, static_cast<std::uint32_t>(block.size()), 4);
  Append(header, network::CheckSum(std::span(block).subspan(20)), 4);
  std::copy(header.begin(), header.end(), block.begin());
}

// The biases are those of the file, without the half that rounds.
inline BlockBytes MakeBlock(const network::Description& description) {
  BlockBytes block(20);
  Append(block, static_cast<std::uint32_t>(description.inputs), 2);
  Append(block, static_cast<std::uint32_t>(description.layers.size()), 2);
  Append(block, static_cast<std::uint32_t>(description.answerBits), 4);
  for (const network::Layer& layer : description.layers) {
    for (const std::size_t field : {layer.kernel, layer.stride, layer.padding}) {
      Append(block, static_cast<std::uint32_t>(field), 1);
    }
    Append(block, layer.isAveraged ? 1 : 0, 1);
    Append(block, static_cast<std::uint32_t>(layer.outputs), 2);
    Append(block, static_cast<std::uint32_t>(layer.maximum), 2);
    Append(block, static_cast<std::uint32_t>(layer.shift), 4);
    for (const std::int32_t bias : layer.biases) Append(block, static_cast<std::uint32_t>(bias), 4);
    for (const std::int16_t weight : layer.weights) Append(block, static_cast<std::uint16_t>(weight), 2);
  }
  Seal(block);
  return block;
}

// `layers` layers whose sums reach a good part of 32 bits.
inline network::Description RandomNetwork(std::mt19937& random, std::size_t layers) {
  const auto from = [&random](std::size_t least, std::size_t most) { return least + random() % (most - least + 1); };
  network::Description description;
  description.inputs = from(1, 4);
  std::size_t inputs = description.inputs;
  std::int32_t greatest = network::kInputMiddle;
  for (std::size_t i = 0; i < layers; ++i) {
    const bool isLast = i + 1 == layers;
    network::Layer layer;
    layer.kernel = from(1, 4);
    layer.stride = from(1, 2);
    layer.padding = from(0, layer.kernel / 2);
    layer.isAveraged = random() % 8 == 0;
    layer.inputs = inputs;
    layer.outputs = from(1, 70);
    layer.maximum = isLast ? 0 : static_cast<std::int32_t>(from(1, 32767));
    layer.shift = static_cast<int>(from(0, 18));
    const std::size_t length = layer.kernel * layer.kernel * layer.inputs;
    const std::size_t most = std::min<std::size_t>(32767, 0x60000000U / length / static_cast<std::size_t>(greatest));
    for (std::size_t n = 0; n < layer.outputs; ++n)
      layer.biases.push_back(static_cast<std::int32_t>(random() % 200000) - 100000);
    for (std::size_t n = 0; n < layer.outputs * length; ++n) {
      layer.weights.push_back(static_cast<std::int16_t>(static_cast<int>(from(0, 2 * most)) - static_cast<int>(most)));
    }
    inputs = layer.outputs;
    greatest = layer.maximum;
    description.layers.push_back(std::move(layer));
  }
  return description;
}

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_ENGINES_NETWORK_BLOCKS_H_
