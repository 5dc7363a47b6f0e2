// What the features are measured on: a small grey copy of the picture's area and, for colour, a coarse grid of cells.
// Its size is bounded, so that the time after it does not grow with the picture.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_WORKING_COPY_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_WORKING_COPY_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engines/document_type/picture.h"

namespace catalogcore::document_type {

// Pixels of the working copy on a side of a colour cell.
inline constexpr std::size_t kCellSide = 4;

// The colour of a cell, free of the order of the samples: exchanging first and third sample turns the sign of
// `outer` and changes nothing else.
struct CellColour {
  std::int16_t outer;   // first minus third sample
  std::int16_t middle;  // twice the second minus both others
  std::uint8_t chroma;  // largest minus smallest sample
};

struct WorkingCopy {
  std::size_t width = 0;           // pixels, at least kSmallestSide
  std::size_t height = 0;          // rows, likewise
  std::vector<std::uint8_t> grey;  // width x height, tones in even steps to the eye, as before the tone curve
  std::vector<CellColour> cells;   // (width / kCellSide) x (height / kCellSide); empty for a picture without colour
};

// Averages whole blocks of equal side so that the longer side is at most about 900 pixels; a narrow strip may stay
// longer. Of a block at most 4 x 4 evenly spaced pixels are read. Throws std::bad_alloc.
WorkingCopy MakeWorkingCopy(const Picture& picture);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_WORKING_COPY_H_
