// Ink on its ground: where a neighbourhood's tones span enough for print, every pixel is one or the other. Print is
// thin runs of an even dark tone on an even light one; what photographs show is not.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_INK_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_INK_H_

#include "engines/document_type/blocks.h"
#include "engines/document_type/features.h"

namespace catalogcore::document_type {

inline constexpr int kBusyRange = 48;        // tones that a busy neighbourhood spans
inline constexpr std::size_t kShortRun = 7;  // pixels

// Sets kBusyShare to kProfileAcross. REQUIRES: `grid` is made of `copy`, and kPaperTone is set.
void MeasureInk(const WorkingCopy& copy, const BlockGrid& grid, FeatureVector& features);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_INK_H_
