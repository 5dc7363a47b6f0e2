// Blocks of bytes that hold a network, as tools/networks writes them. All numbers are little-endian.
//
//   8 bytes  "CATALNET"
//   u32      version: 1
//   u32      size of the block in bytes
//   u32      Adler-32 check sum of everything after these 20 bytes
//   u16      samples of a pixel of the input
//   u16      number of layers
//   u16      answerBits: an answer of 1 has the value 2^answerBits
//   u16      0
//   layers, in their order:
//     u8     kernel: rows and columns of the kernel
//     u8     stride
//     u8     padding: zeros on each side of the input, at most half of the kernel
//     u8     1 if the outputs are averaged over all places, otherwise 0
//     u16    outputs
//     u16    maximum: outputs are clamped to 0..maximum; 0 for the last layer, which is not clamped
//     u16    shift: a sum is divided by 2^shift and rounded
//     u16    0
//     i32    biases, one for each output
//     i16    weights: output, kernel row, kernel column, input
#ifndef CATALOGCORE_ENGINES_NETWORK_BLOCK_H_
#define CATALOGCORE_ENGINES_NETWORK_BLOCK_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace catalogcore::network {

// A byte b of a picture enters the first layer as b - kInputMiddle. Padding has this value too.
constexpr std::int32_t kInputMiddle = 128;

struct LayerShape {
  std::size_t kernel = 0;
  std::size_t stride = 0;
  std::size_t padding = 0;
  bool isAveraged = false;
  std::size_t inputs = 0;
  std::size_t outputs = 0;
  std::int32_t maximum = 0;
  int shift = 0;
};

struct Layer : LayerShape {
  std::vector<std::int32_t> biases;  // each with half of 2^shift added, so that the division rounds
  std::vector<std::int16_t> weights;
};

struct Description {
  std::size_t inputs = 0;
  int answerBits = 0;
  std::vector<Layer> layers;  // at least one
};

// Returns nothing if the block is damaged. In a valid description all sizes are within the limits of block.cpp, and no
// sum of a layer can leave 32 bits, in any order of its terms and for any picture. Throws std::bad_alloc.
std::optional<Description> ReadBlock(std::span<const std::uint8_t> block);

std::uint32_t CheckSum(std::span<const std::uint8_t> bytes);  // Adler-32

}  // namespace catalogcore::network

#endif  // CATALOGCORE_ENGINES_NETWORK_BLOCK_H_
