#include "engines/network/network.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "tests/engines/network_blocks.h"

namespace catalogcore::network {

namespace {

// Values of rows x columns places, `count` at a place.
struct Map {
  std::ptrdiff_t rows = 0, columns = 0, count = 0;
  std::vector<std::int64_t> values;

  std::int64_t At(std::ptrdiff_t row, std::ptrdiff_t column, std::ptrdiff_t i) const {
    if (row < 0 || row >= rows || column < 0 || column >= columns) return 0;
    return values[static_cast<std::size_t>((row * columns + column) * count + i)];
  }
};

// Follows the description of the format, one value at a time. The biases of `layer` contain the half that rounds.
Map Apply(const Layer& layer, const Map& from, bool isLast) {
  if (from.values.empty()) return {};
  const auto kernel = static_cast<std::ptrdiff_t>(layer.kernel), padding = static_cast<std::ptrdiff_t>(layer.padding);
  const auto stride = static_cast<std::ptrdiff_t>(layer.stride);
  const auto length = [&](std::ptrdiff_t side) {
    return std::max<std::ptrdiff_t>(0, (side + 2 * padding - kernel + stride) / stride);
  };
  Map to{length(from.rows), length(from.columns), static_cast<std::ptrdiff_t>(layer.outputs), {}};
  for (std::ptrdiff_t row = 0; row < to.rows; ++row) {
    for (std::ptrdiff_t column = 0; column < to.columns; ++column) {
      auto weight = layer.weights.begin();
      for (const std::int32_t bias : layer.biases) {
        std::int64_t sum = bias;
        for (std::ptrdiff_t y = 0; y < kernel; ++y) {
          for (std::ptrdiff_t x = 0; x < kernel; ++x) {
            for (std::ptrdiff_t i = 0; i < from.count; ++i) {
              sum += *weight++ * from.At(row * stride - padding + y, column * stride - padding + x, i);
            }
          }
        }
        sum >>= layer.shift;
        to.values.push_back(isLast ? sum : std::clamp<std::int64_t>(sum, 0, layer.maximum));
      }
    }
  }
  if (!layer.isAveraged || to.values.empty()) return to;
  Map mean{1, 1, to.count, {}};
  for (std::ptrdiff_t i = 0; i < to.count; ++i) {
    double sum = 0;
    for (std::ptrdiff_t place = 0; place < to.rows * to.columns; ++place)
      sum += static_cast<double>(to.At(place / to.columns, place % to.columns, i));
    mean.values.push_back(static_cast<std::int64_t>(std::floor(sum / static_cast<double>(to.rows * to.columns) + 0.5)));
  }
  return mean;
}

TEST(Network, EveryFormGivesTheSumsOfTheDescription) {
  std::mt19937 random(5);
  Workspace workspace;
  for (int round = 0; round < 60; ++round) {
    const BlockBytes block = MakeBlock(RandomNetwork(random, 1 + random() % 4));
    const auto description = ReadBlock(block);
    ASSERT_TRUE(description);
    const std::size_t rows = 1 + random() % 30, columns = 1 + random() % 40, samples = description->inputs;
    std::vector<std::uint8_t> picture(rows * columns * samples);
    for (std::uint8_t& sample : picture) sample = static_cast<std::uint8_t>(random());
    Map map{static_cast<std::ptrdiff_t>(rows),
            static_cast<std::ptrdiff_t>(columns),
            static_cast<std::ptrdiff_t>(samples),
            {}};
    for (const std::uint8_t sample : picture) map.values.push_back(sample - kInputMiddle);
    for (const Layer& layer : description->layers) map = Apply(layer, map, &layer == &description->layers.back());

    for (const Form& form : Forms()) {
      const Network network(*description, form);
      const PixelView view(picture.data(), rows, columns * samples);
      ASSERT_EQ(AllAnswers(network.Evaluate(view, workspace)), map.values) << form.name << ", round " << round;
    }
  }
}

TEST(Network, RefusesDamagedBlocks) {
  std::mt19937 random(6);
  Description valid = RandomNetwork(random, 3);
  valid.layers[0].isAveraged = false;
  const BlockBytes block = MakeBlock(valid);
  ASSERT_TRUE(ReadBlock(block));
  for (std::size_t length = 0; length < block.size(); length += 1 + length / 8) {
    EXPECT_FALSE(ReadBlock(std::span(block).first(length)));
    BlockBytes shorter(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(length));
    Seal(shorter);
    EXPECT_FALSE(ReadBlock(shorter)) << length;
    BlockBytes changed = block;
    changed[length] ^= 4;
    EXPECT_FALSE(ReadBlock(changed)) << length;
  }
  // The sums of the second layer reach exactly the greatest number of 32 bits, or one more.
  for (const int excess : {0, 1}) {
    Description description = valid;
    Layer& layer = description.layers[1];
    layer.shift = 4;
    std::fill(layer.weights.begin(), layer.weights.end(), std::int16_t{0});
    layer.weights.back() = -32767;
    const std::int64_t product = std::int64_t{32767} * description.layers[0].maximum;
    layer.biases.back() = static_cast<std::int32_t>(0x7FFFFFFF - product - 8 + excess);
    EXPECT_EQ(ReadBlock(MakeBlock(description)).has_value(), excess == 0);
  }
  const std::function<void(Description&)> faults[] = {
      [](Description& d) { d.inputs = 5; },
      [](Description& d) { d.layers.clear(); },
      [](Description& d) { d.layers[0].kernel = 0; },
      [](Description& d) { d.layers[0].stride = 0; },
      [](Description& d) { d.layers[0].padding = d.layers[0].kernel; },
      [](Description& d) { d.layers[0].outputs = 0; },
      [](Description& d) { d.layers[0].maximum = 0; },
      [](Description& d) { d.layers[0].maximum = 32768; },
      [](Description& d) { d.layers[0].shift = 31; },
      [](Description& d) { d.layers[2].maximum = 1; },
      [](Description& d) { d.layers[2].weights.push_back(0); },
  };
  for (const auto& fault : faults) {
    Description description = valid;
    fault(description);
    EXPECT_FALSE(ReadBlock(MakeBlock(description))) << &fault - faults;
  }
}

}  // namespace

}  // namespace catalogcore::network
