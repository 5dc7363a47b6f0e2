// The forms of the convolution: one for each set of vector instructions. All forms give the same results.
#ifndef CATALOGCORE_ENGINES_NETWORK_FORMS_H_
#define CATALOGCORE_ENGINES_NETWORK_FORMS_H_

#include <cstddef>
#include <cstdint>
#include <span>

namespace catalogcore::network {

// Outputs of a layer are padded to a multiple of this number, so that every form handles whole vectors only.
constexpr std::size_t kOutputStep = 16;

// One row of a layer's output. The values under one row of the kernel are consecutive in the input, so a convolution is
// a sum of products of pairs of values, and the number of samples of a pixel does not matter.
struct ConvolutionRow {
  const std::int16_t* input = nullptr;  // the first value under the kernel at column 0
  std::size_t inputPitch = 0;           // values from one row of the input to the next
  std::size_t inputStep = 0;            // values from the kernel at a column to the kernel at the next column
  std::size_t kernelRows = 0;
  std::size_t kernelPairs = 0;            // pairs of values in a row of the kernel
  const std::int16_t* weights = nullptr;  // kernel row, pair, output, the two weights of the pair
  const std::int32_t* biases = nullptr;
  std::size_t outputs = 0;  // a multiple of kOutputStep
  std::size_t columns = 0;
  int shift = 0;
  std::int16_t maximum = 0;
  std::int16_t* activations = nullptr;  // column, output; the sums are shifted and clamped to 0..maximum
  std::int32_t* answers = nullptr;      // instead of the activations: the sums are shifted only
};

struct Form {
  const char* name = nullptr;
  void (*convolveRow)(const ConvolutionRow&) = nullptr;
};

// The forms that this processor has. The first is the plain form, the last the fastest.
std::span<const Form> Forms();

// Only for forms.cpp. Each is compiled with the instructions of its name.
void ConvolveRowPlain(const ConvolutionRow& row);
void ConvolveRowSse2(const ConvolutionRow& row);
void ConvolveRowAvx2(const ConvolutionRow& row);
void ConvolveRowAvx512(const ConvolutionRow& row);
void ConvolveRowVnni(const ConvolutionRow& row);
void ConvolveRowNeon(const ConvolutionRow& row);

}  // namespace catalogcore::network

#endif  // CATALOGCORE_ENGINES_NETWORK_FORMS_H_
