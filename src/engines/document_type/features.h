// The numbers that describe a picture to the model. All but the size are shares, ratios or bounded means, so that
// pictures of any size compare; none depends on the order of the three samples, and hardly any on a turn of the page by a quarter.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_FEATURES_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_FEATURES_H_

#include <array>
#include <cstddef>

#include "engines/document_type/working_copy.h"

namespace catalogcore::document_type {

// Tones run from 0 (black) to 1 (white). "Paper" is the commonest tone. A tile is one of 8 x 8 parts of the picture;
// a block is 8 x 8 pixels of the working copy. A block is busy when the tones of its 3 x 3 neighbourhood span enough
// for print; "ink" is what is darker than half way there, the rest is "ground".
enum Feature : std::size_t {
  kPaperTone,          // tone of the histogram's peak
  kPaperShare,         // pixels of about the paper's tone
  kPeakSharpness,      // pixels of nearly the paper's tone among those of about it
  kLighterShare,       // pixels clearly lighter than paper
  kDarkerShare,        // pixels far darker than paper
  kToneEntropy,        // spread of the histogram
  kToneSeparation,     // how well two classes of tones explain the picture (Otsu's criterion)
  kDarkClassShare,     // pixels in the darker of the two
  kClassContrast,      // distance of the two classes' means
  kBetweenShare,       // pixels in the middle half between the two means
  kTilePeak,           // median over tiles of the share of pixels about the tile's commonest tone
  kPaperTiles,         // tiles of one light tone with some much darker pixels and few lighter ones
  kTilePeakSpread,     // spread of the tiles' commonest tones
  kFlatGradients,      // pixels with next to no gradient
  kMiddlingGradients,  // pixels with a gradient as of shading and soft texture
  kStrongGradients,    // pixels with a gradient as of print
  kStrongOfSteep,      // strong gradients among all that are not flat
  kAlignedGradients,   // strong gradients that run along the rows or the columns
  kFlatBlocks,         // blocks with a small range of tones
  kMiddlingBlocks,     // blocks with a middling range
  kFlatAtPaper,        // flat blocks of about the paper's tone among the flat ones
  kCoarseVariance,     // share of the tones' variance that block means keep
  kCoarseGradient,     // gradient between block means over gradient between pixels
  kLineShare,          // pixels on thin lines over pixels with a gradient
  kDarkLines,          // dark minus light among the pixels on thin lines
  kBusyShare,          // blocks that are busy
  kInkShare,           // ink among the pixels of busy blocks
  kCleanGround,        // ground close to the lightest tone of its neighbourhood
  kCleanInk,           // ink close to the darkest
  kGroundSpread,       // spread of the lightest tones of busy neighbourhoods
  kInkSpread,          // spread of the darkest tones
  kGroundIsPaper,      // busy neighbourhoods whose lightest tone is about the paper's
  kShortInkAlong,      // ink in runs of at most kShortRun pixels, in the direction with more of it
  kShortInkAcross,     // the same in the direction with less
  kInkRunsAlong,       // number of ink runs for each pixel of busy blocks, in the direction with more
  kInkRunsAcross,      // with less
  kInkRunLength,       // mean length of ink runs, in kShortRun pixels, in the direction where they are shorter
  kProfileAlong,       // change of ink from one line to the next, in the direction with more
  kProfileAcross,      // with less
  kChroma,             // mean chroma
  kColourfulShare,     // cells with much chroma
  kColourSpread,       // spread of colour, without the common tint that old paper has
  kPictureSize,        // binary logarithm of the working copy's longer side; counts together with others alone
  kFeatureCount
};

using FeatureVector = std::array<double, kFeatureCount>;

// Throws std::bad_alloc.
FeatureVector MeasureFeatures(const WorkingCopy& copy);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_FEATURES_H_
