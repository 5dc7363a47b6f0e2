#include "engines/document_type/blocks.h"

#include <algorithm>

namespace catalogcore::document_type {
namespace {

Block Measure(const std::uint8_t* corner, std::size_t stride) {
  Block block{255, 0, 0};
  for (std::size_t y = 0; y < kBlockSide; ++y) {
    const std::uint8_t* const row = corner + y * stride;
    for (std::size_t x = 0; x < kBlockSide; ++x) {
      block.low = std::min(block.low, row[x]);
      block.high = std::max(block.high, row[x]);
      block.sum = static_cast<std::uint16_t>(block.sum + row[x]);
    }
  }
  return block;
}

}  // namespace

BlockGrid CutIntoBlocks(const WorkingCopy& copy) {
  BlockGrid grid;
  grid.width = copy.width / kBlockSide;
  grid.height = copy.height / kBlockSide;
  grid.blocks.reserve(grid.width * grid.height);
  for (std::size_t y = 0; y < grid.height; ++y) {
    for (std::size_t x = 0; x < grid.width; ++x) {
      grid.blocks.push_back(Measure(copy.grey.data() + (y * copy.width + x) * kBlockSide, copy.width));
    }
  }
  return grid;
}

std::vector<Block> Neighbourhoods(const BlockGrid& grid) {
  std::vector<Block> ranges(grid.blocks.size(), Block{255, 0, 0});
  for (std::size_t y = 0; y < grid.height; ++y) {
    for (std::size_t x = 0; x < grid.width; ++x) {
      Block& range = ranges[y * grid.width + x];
      for (std::size_t ny = y - (y > 0); ny < std::min(y + 2, grid.height); ++ny) {
        for (std::size_t nx = x - (x > 0); nx < std::min(x + 2, grid.width); ++nx) {
          range.low = std::min(range.low, grid.blocks[ny * grid.width + nx].low);
          range.high = std::max(range.high, grid.blocks[ny * grid.width + nx].high);
        }
      }
    }
  }
  return ranges;
}

}  // namespace catalogcore::document_type
