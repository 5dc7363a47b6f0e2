// The working copy in blocks of 8 x 8 pixels: range and mean of the tones of each. Rows and columns that do not fill
// a block are left out.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_BLOCKS_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_BLOCKS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engines/document_type/working_copy.h"

namespace catalogcore::document_type {

inline constexpr std::size_t kBlockSide = 8;

struct Block {
  std::uint8_t low;   // darkest tone
  std::uint8_t high;  // lightest
  std::uint16_t sum;  // of all tones
};

struct BlockGrid {
  std::size_t width = 0;  // blocks, at least 2
  std::size_t height = 0;
  std::vector<Block> blocks;  // width x height
};

BlockGrid CutIntoBlocks(const WorkingCopy& copy);

// The range of each block's 3 x 3 neighbourhood, as far as it lies in the grid; `sum` is 0.
std::vector<Block> Neighbourhoods(const BlockGrid& grid);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_BLOCKS_H_
