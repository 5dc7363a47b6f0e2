#include "engines/network/network.h"

#include <algorithm>
#include <utility>

namespace catalogcore::network {
namespace {

std::size_t RoundedUp(std::size_t value, std::size_t step) { return (value + step - 1) / step * step; }

// Where the values of a picture, or of a layer's output, lie: rows x columns places of `pitch` values, with `border`
// places of zeros on each side.
struct Plane {
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::size_t pitch = 0;
  std::size_t border = 0;

  bool IsEmpty() const { return rows == 0 || columns == 0; }
  std::size_t RowPitch() const { return (columns + 2 * border) * pitch; }
  std::size_t First(std::size_t row) const { return (row + border) * RowPitch() + border * pitch; }

  // A kernel row with an odd number of values reads one value more, of weight 0.
  std::size_t Length() const { return (rows + 2 * border) * RowPitch() + 1; }
};

std::size_t OutputLength(std::size_t input, const LayerShape& layer) {
  const std::size_t padded = input + 2 * layer.padding;
  return padded < layer.kernel ? 0 : (padded - layer.kernel) / layer.stride + 1;
}

void ReadPicture(const PixelView& picture, const Plane& plane, std::vector<std::int16_t>& values) {
  values.assign(plane.Length(), 0);
  for (std::size_t y = 0; y < plane.rows; ++y) {
    const auto row = picture.Row(y);
    std::transform(row.begin(), row.end(), values.data() + plane.First(y),
                   [](std::uint8_t sample) { return static_cast<std::int16_t>(sample - kInputMiddle); });
  }
}

// Exactly one of `activations` and `answers` is set.
void Convolve(const PackedLayer& layer, const Form& form, const Plane& from, const std::int16_t* input, const Plane& to,
              std::int16_t* activations, std::int32_t* answers) {
  ConvolutionRow row;
  row.inputPitch = from.RowPitch();
  row.inputStep = layer.stride * from.pitch;
  row.kernelRows = layer.kernel;
  row.kernelPairs = layer.kernelPairs;
  row.weights = layer.weights.front().values;
  row.biases = layer.biases.data();
  row.outputs = to.pitch;
  row.columns = to.columns;
  row.shift = layer.shift;
  row.maximum = static_cast<std::int16_t>(layer.maximum);
  for (std::size_t y = 0; y < to.rows; ++y) {
    row.input = input + y * layer.stride * row.inputPitch;
    if (answers) row.answers = answers + to.First(y);
    if (activations) row.activations = activations + to.First(y);
    form.convolveRow(row);
  }
}

// Rounded to the nearest integer, halves upwards.
std::int64_t RoundedMean(std::int64_t sum, std::int64_t count) {
  const std::int64_t doubled = 2 * sum + count;
  const std::int64_t quotient = doubled / (2 * count);
  return doubled % (2 * count) < 0 ? quotient - 1 : quotient;
}

// Replaces the values of the first place by the means over all places.
template <typename Value>
void Average(const Plane& plane, std::vector<Value>& values) {
  const std::size_t places = plane.rows * plane.columns;
  if (places == 0) return;
  for (std::size_t i = 0; i < plane.pitch; ++i) {
    std::int64_t sum = 0;
    for (std::size_t place = 0; place < places; ++place) sum += values[place * plane.pitch + i];
    values[i] = static_cast<Value>(RoundedMean(sum, static_cast<std::int64_t>(places)));
  }
}

}  // namespace

PackedLayer::PackedLayer(const Layer& layer, std::size_t pitch)
    : LayerShape(layer),
      kernelPairs((layer.kernel * pitch + 1) / 2),
      outputPitch(RoundedUp(layer.outputs, kOutputStep)),
      biases(layer.biases),
      weights(layer.kernel * kernelPairs * (outputPitch / kOutputStep)) {
  biases.resize(outputPitch);
  auto weight = layer.weights.begin();
  for (std::size_t output = 0; output < outputs; ++output) {
    for (std::size_t y = 0; y < kernel; ++y) {
      for (std::size_t x = 0; x < kernel; ++x) {
        for (std::size_t value = x * pitch; value < x * pitch + inputs; ++value) {
          const std::size_t line = (y * kernelPairs + value / 2) * (outputPitch / kOutputStep) + output / kOutputStep;
          weights[line].values[2 * (output % kOutputStep) + value % 2] = *weight++;
        }
      }
    }
  }
}

Network::Network(const Description& description, const Form& form)
    : answerBits_(description.answerBits), inputs_(description.inputs), form_(form) {
  std::size_t pitch = inputs_;
  layers_.reserve(description.layers.size());
  for (const Layer& layer : description.layers) {
    layers_.emplace_back(layer, pitch);
    pitch = layers_.back().outputPitch;
  }
}

Answers Network::Evaluate(const PixelView& picture, Workspace& workspace) const {
  Plane from{static_cast<std::size_t>(picture.Rows()), static_cast<std::size_t>(picture.Stride()) / inputs_, inputs_,
             layers_.front().padding};
  ReadPicture(picture, from, workspace.input_);
  for (auto layer = layers_.begin(); layer != layers_.end(); ++layer) {
    const bool isLast = layer + 1 == layers_.end();
    Plane to{OutputLength(from.rows, *layer), OutputLength(from.columns, *layer), layer->outputPitch, 0};
    if (from.IsEmpty() || to.IsEmpty()) return {};
    if (isLast) {
      workspace.answers_.resize(to.Length());
      Convolve(*layer, form_, from, workspace.input_.data(), to, nullptr, workspace.answers_.data());
      if (layer->isAveraged) {
        Average(to, workspace.answers_);
        to.rows = to.columns = 1;
      }
    } else {
      if (!layer->isAveraged) to.border = (layer + 1)->padding;
      workspace.output_.assign(to.Length(), 0);
      Convolve(*layer, form_, from, workspace.input_.data(), to, workspace.output_.data(), nullptr);
      if (layer->isAveraged) {
        Average(to, workspace.output_);
        to = {1, 1, to.pitch, (layer + 1)->padding};
        workspace.input_.assign(to.Length(), 0);
        std::copy_n(workspace.output_.begin(), to.pitch, workspace.input_.data() + to.First(0));
      } else {
        std::swap(workspace.input_, workspace.output_);
      }
    }
    from = to;
  }
  return {from.rows, from.columns, layers_.back().outputs, from.pitch, workspace.answers_.data()};
}

}  // namespace catalogcore::network
