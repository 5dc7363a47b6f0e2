// Runs a convolutional network on a picture, in integers: the same picture gives the same answers on every processor.
#ifndef CATALOGCORE_ENGINES_NETWORK_NETWORK_H_
#define CATALOGCORE_ENGINES_NETWORK_NETWORK_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/pixel_view.h"
#include "engines/network/block.h"
#include "engines/network/forms.h"

namespace catalogcore::network {

// What the last layer gives: rows x columns places with the same number of answers each.
struct Answers {
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::size_t count = 0;  // of answers at a place
  std::size_t pitch = 0;  // values from one place to the next
  const std::int32_t* values = nullptr;

  // REQUIRES: row < rows, column < columns.
  std::span<const std::int32_t> At(std::size_t row, std::size_t column) const {
    return {values + (row * columns + column) * pitch, count};
  }
};

// Memory of an evaluation, which later evaluations use again.
class Workspace {
 private:
  friend class Network;
  std::vector<std::int16_t> input_;
  std::vector<std::int16_t> output_;
  std::vector<std::int32_t> answers_;
};

// The weights of kOutputStep outputs for a pair of inputs fill one cache line.
struct alignas(64) WeightLine {
  std::int16_t values[2 * kOutputStep] = {};
};

// A layer with its weights in the order of ConvolutionRow.
struct PackedLayer : LayerShape {
  // `pitch` is the number of values of a pixel of the input.
  PackedLayer(const Layer& layer, std::size_t pitch);

  std::size_t kernelPairs;  // pairs of values in a row of the kernel
  std::size_t outputPitch;  // outputs, rounded up to a multiple of kOutputStep
  std::vector<std::int32_t> biases;
  std::vector<WeightLine> weights;
};

// Never changes after its construction, so threads can share it.
class Network {
 public:
  // `form` is the fastest form of this processor unless a test chooses another.
  explicit Network(const Description& description, const Form& form = Forms().back());

  // An answer of 1 has the value 2^AnswerBits().
  int AnswerBits() const { return answerBits_; }

  // The rows of `picture` have no padding; the samples of a pixel are consecutive. The answers are valid until the
  // workspace is used again. A picture that is smaller than a kernel has no answers: rows or columns is 0. Throws
  // std::bad_alloc. REQUIRES: the stride of the picture is a multiple of the samples of a pixel.
  Answers Evaluate(const PixelView& picture, Workspace& workspace) const;

 private:
  int answerBits_;
  std::size_t inputs_;
  std::vector<PackedLayer> layers_;
  Form form_;
};

}  // namespace catalogcore::network

#endif  // CATALOGCORE_ENGINES_NETWORK_NETWORK_H_
