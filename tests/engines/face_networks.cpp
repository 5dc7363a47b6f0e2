// Networks that are simple enough to predict, in place of the trained ones: the tests of the face detector are about
// everything around the networks. A "face" is a spot on a grey of 110: 10 pixels a side, 255 bright if the face is turned
// by a quarter clockwise, 225 if it is upright. A darker spot of 180 lies 16 pixels above its middle.
#include "engines/faces/network_files.h"
#include "tests/engines/network_blocks.h"

namespace catalogcore {

namespace {

network::Layer MakeLayer(std::size_t kernel, std::size_t stride, std::size_t padding, std::size_t outputs,
                         std::int32_t maximum, int shift) {
  network::Layer layer;
  layer.kernel = kernel;
  layer.stride = stride;
  layer.padding = padding;
  layer.outputs = outputs;
  layer.maximum = maximum;
  layer.shift = shift;
  layer.biases.resize(outputs);
  layer.weights.resize(outputs * kernel * kernel);
  return layer;
}

// Answers a spot that fills 8 pixels but not 16: 353 if its tone is 255, 280 if it is 225, less than 215 otherwise.
BlockBytes SearchBlock() {
  network::Layer spot = MakeLayer(16, 8, 8, 1, 4095, 6);
  for (std::size_t i = 0; i < 256; ++i) {
    const bool isMiddle = i / 16 - 4 < 8 && i % 16 - 4 < 8;
    spot.weights[i] = isMiddle ? 3 : -1;
  }
  network::Layer answers = MakeLayer(1, 1, 0, 8, 0, 0);
  answers.weights = {16, 0, 0, 0, 0, 1, 0, 0};
  answers.biases = {-16 * 215, 0, 0, 0, 0, -315, -999, -999};
  return MakeBlock({1, 4, {spot, answers}});
}

// Answers the means of nine places: a face if the middle is bright. Moves the rectangle to the brighter sides. The
// height is e^0.3 times the width.
BlockBytes CheckBlock() {
  network::Layer means = MakeLayer(16, 16, 0, 1, 4095, 4);
  std::fill(means.weights.begin(), means.weights.end(), std::int16_t{1});
  network::Layer answers = MakeLayer(3, 1, 0, 5, 0, 0);
  answers.weights = {0, 0,  0, 0,  400, 0, 0, 0, 0,  //
                     0, 0,  0, -7, 0,   7, 0, 0, 0,  //
                     0, -7, 0, 0,  0,   0, 0, 7, 0};
  answers.weights.resize(5 * 9);
  answers.biases = {-40960, 0, 0, 0, 1229};
  return MakeBlock({1, 12, {means, answers}});
}

}  // namespace

std::span<const faces::EmbeddedFile> faces::NetworkFiles() {
  static const BlockBytes blocks[] = {SearchBlock(), CheckBlock()};
  const auto content = [](const BlockBytes& block) {
    return std::string_view(reinterpret_cast<const char*>(block.data()), block.size());
  };
  static const EmbeddedFile files[] = {{"search", content(blocks[0])}, {"check", content(blocks[1])}};
  return files;
}

}  // namespace catalogcore
