// The numbers that describe a picture to the model. All but the size are shares, ratios or bounded means, so pictures
// of any size compare. No feature depends on the order of the three samples. A quarter turn of the page changes most
// features little.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_FEATURES_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_FEATURES_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engines/document_type/picture.h"

namespace catalogcore::document_type {

// Tones run from 0 (black) to 1 (white). "Paper" is the commonest tone. The picture is divided into 8 x 8 tiles. A
// block is 8 x 8 pixels of the working copy. A block is busy when the tones of its 3 x 3 neighbourhood span at least
// kBusyRange. In a busy block, pixels darker than the middle of that span are "ink", the others "ground".
enum Feature : std::size_t {
  kPaperTone,          // tone at the peak of the histogram
  kPaperShare,         // share of pixels close to the tone of paper
  kPeakSharpness,      // share of the pixels of kPaperShare that are very close to it
  kLighterShare,       // share of pixels clearly lighter than paper
  kDarkerShare,        // share of pixels far darker than paper
  kToneEntropy,        // entropy of the histogram
  kToneSeparation,     // between-class variance over total variance at the best threshold (Otsu)
  kDarkClassShare,     // share of pixels in the darker class
  kClassContrast,      // difference of the two classes' means
  kBetweenShare,       // share of pixels in the middle half between the two means
  kTilePeak,           // median over tiles: share of pixels close to the tile's commonest tone
  kPaperTiles,         // share of tiles with one light tone, some much darker pixels and few lighter ones
  kTilePeakSpread,     // deviation of the tiles' commonest tones
  kFlatGradients,      // share of pixels with almost no gradient
  kMiddlingGradients,  // share of pixels with a gradient typical of shading and soft texture
  kStrongGradients,    // share of pixels with a gradient typical of print
  kStrongOfSteep,      // strong gradients among all gradients that are not flat
  kAlignedGradients,   // strong gradients along rows or columns among the strong ones
  kFlatBlocks,         // share of blocks with a small range of tones
  kMiddlingBlocks,     // share of blocks with a medium range of tones
  kFlatAtPaper,        // blocks close to the tone of paper among the flat blocks
  kCoarseVariance,     // variance of block means over variance of pixels
  kCoarseGradient,     // mean gradient between block means over mean gradient between pixels
  kLineShare,          // pixels on thin lines over pixels with a gradient
  kDarkLines,          // dark minus light among the pixels on thin lines
  kBusyShare,          // share of blocks that are busy
  kInkShare,           // ink among the pixels of busy blocks
  kCleanGround,        // share of ground close to the lightest tone of its neighbourhood
  kCleanInk,           // share of ink close to the darkest tone of its neighbourhood
  kGroundSpread,       // deviation of the lightest tones of busy neighbourhoods
  kInkSpread,          // deviation of the darkest tones of busy neighbourhoods
  kGroundIsPaper,      // busy neighbourhoods whose lightest tone is close to paper
  kShortInkAlong,      // share of ink in runs of at most kShortRun pixels, larger of both directions
  kShortInkAcross,     // the smaller of both directions
  kInkRunsAlong,       // ink runs per pixel of busy blocks, larger of both directions
  kInkRunsAcross,      // the smaller of both directions
  kInkRunLength,       // mean length of ink runs in units of kShortRun, smaller of both directions
  kProfileAlong,       // change of ink from line to line over all ink, larger of both directions
  kProfileAcross,      // the smaller of both directions
  kChroma,             // mean chroma
  kColourfulShare,     // share of cells with much chroma
  kColourSpread,       // deviation of colour; ignores an even tint, as old paper has
  kPictureSize,        // binary logarithm of the working copy's longer side; used only in products
  kFeatureCount
};

inline constexpr int kBusyRange = 48;        // of 255 tones
inline constexpr std::size_t kShortRun = 7;  // pixels

using FeatureVector = std::array<double, kFeatureCount>;

// 0 if `whole` is not above 0.
inline double Ratio(double part, double whole) { return whole > 0 ? part / whole : 0; }

// Throws std::bad_alloc.
FeatureVector MeasureFeatures(const WorkingCopy& copy);

// The parts of MeasureFeatures in the order in which it calls them, each in the file of its name. MeasureBlocks and
// MeasureInk read kPaperTone, which MeasureTones sets.

// Sets kPaperTone to kTilePeakSpread.
void MeasureTones(const WorkingCopy& copy, FeatureVector& features);

// Sets kFlatGradients to kAlignedGradients, kLineShare and kDarkLines. Returns the mean gradient, in tones of 255.
double MeasureTexture(const WorkingCopy& copy, FeatureVector& features);

inline constexpr std::size_t kBlockSide = 8;  // pixels

struct ToneBlock {
  std::uint8_t low;   // darkest tone
  std::uint8_t high;  // lightest tone
  std::uint16_t sum;  // of all tones
};

struct ToneBlocks {
  std::size_t width = 0;  // blocks, at least 2
  std::size_t height = 0;
  std::vector<ToneBlock> blocks;  // width x height
};

// Leaves out rows and columns that do not fill a block.
ToneBlocks CutIntoBlocks(const WorkingCopy& copy);

// Sets kFlatBlocks to kCoarseGradient.
void MeasureBlocks(const WorkingCopy& copy, const ToneBlocks& grid, double meanGradient, FeatureVector& features);

// Sets kBusyShare to kProfileAcross.
void MeasureInk(const WorkingCopy& copy, const ToneBlocks& grid, FeatureVector& features);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_FEATURES_H_
