// The body of every form of the convolution. Only form_*.cpp include it, each compiled for its own instructions, so
// everything here is local to the file, and nothing of the standard library is called: the linker must not choose code
// for a newer processor where an older one runs it.
//
// A Vector has:
//   kLanes                           outputs in a vector
//   kPixels                          columns that share a load of weights; a power of 2
//   Sums, Weights, Pair              types: kLanes sums, kLanes pairs of weights, one pair of inputs for all lanes
//   LoadSums, LoadWeights, LoadPair  reads from memory that need not be aligned
//   AddProducts(sums, weights, pair) adds both products in every lane
//   Shifted(sums, shift)             shifts to the right, arithmetically
//   Store(sums, to)                  writes kLanes sums
//   StoreClamped(sums, maximum, to)  writes kLanes activations between 0 and `maximum`
#ifndef CATALOGCORE_ENGINES_NETWORK_CONVOLUTION_H_
#define CATALOGCORE_ENGINES_NETWORK_CONVOLUTION_H_

#include <cstddef>
#include <cstdint>

#include "engines/network/forms.h"

namespace catalogcore::network {
namespace {

// kPixels columns from `column`, kVectors vectors of outputs from `output`. The sums stay in registers.
template <typename Vector, std::size_t kPixels, std::size_t kVectors>
void ConvolveTile(const ConvolutionRow& row, std::size_t column, std::size_t output) {
  typename Vector::Sums sums[kPixels][kVectors];
  for (std::size_t v = 0; v < kVectors; ++v) {
    const auto bias = Vector::LoadSums(row.biases + output + v * Vector::kLanes);
    for (std::size_t p = 0; p < kPixels; ++p) sums[p][v] = bias;
  }
  const std::int16_t* inputRow = row.input + column * row.inputStep;
  const std::int16_t* weightRow = row.weights + 2 * output;
  for (std::size_t y = 0; y < row.kernelRows; ++y, inputRow += row.inputPitch) {
    const std::int16_t* input = inputRow;
    for (std::size_t pair = 0; pair < row.kernelPairs; ++pair, input += 2, weightRow += 2 * row.outputs) {
      typename Vector::Weights weights[kVectors];
      for (std::size_t v = 0; v < kVectors; ++v) weights[v] = Vector::LoadWeights(weightRow + 2 * v * Vector::kLanes);
      for (std::size_t p = 0; p < kPixels; ++p) {
        const auto values = Vector::LoadPair(input + p * row.inputStep);
        for (std::size_t v = 0; v < kVectors; ++v) sums[p][v] = Vector::AddProducts(sums[p][v], weights[v], values);
      }
    }
  }
  for (std::size_t p = 0; p < kPixels; ++p) {
    for (std::size_t v = 0; v < kVectors; ++v) {
      const std::size_t at = (column + p) * row.outputs + output + v * Vector::kLanes;
      const auto shifted = Vector::Shifted(sums[p][v], row.shift);
      if (row.answers) {
        Vector::Store(shifted, row.answers + at);
      } else {
        Vector::StoreClamped(shifted, row.maximum, row.activations + at);
      }
    }
  }
}

// The last tile of a row overlaps the one before, instead of being smaller.
template <typename Vector, std::size_t kPixels, std::size_t kVectors>
void ConvolveColumns(const ConvolutionRow& row, std::size_t output) {
  if constexpr (kPixels > 1) {
    if (row.columns < kPixels) return ConvolveColumns<Vector, kPixels / 2, kVectors>(row, output);
  }
  std::size_t column = 0;
  for (; column + kPixels <= row.columns; column += kPixels) {
    ConvolveTile<Vector, kPixels, kVectors>(row, column, output);
  }
  if (column < row.columns) ConvolveTile<Vector, kPixels, kVectors>(row, row.columns - kPixels, output);
}

template <typename Vector>
void ConvolveRow(const ConvolutionRow& row) {
  const std::size_t vectors = row.outputs / Vector::kLanes;
  const std::size_t together = vectors % 3 == 0 ? 3 : vectors % 2 == 0 ? 2 : 1;
  for (std::size_t output = 0; output < row.outputs; output += together * Vector::kLanes) {
    if (together == 3) {
      ConvolveColumns<Vector, Vector::kPixels, 3>(row, output);
    } else if (together == 2) {
      ConvolveColumns<Vector, Vector::kPixels, 2>(row, output);
    } else {
      ConvolveColumns<Vector, Vector::kPixels, 1>(row, output);
    }
  }
}

}  // namespace
}  // namespace catalogcore::network

#endif  // CATALOGCORE_ENGINES_NETWORK_CONVOLUTION_H_
