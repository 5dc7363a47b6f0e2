// Features of the tones alone, wherever they lie, and of the tones tile by tile.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_TONE_FEATURES_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_TONE_FEATURES_H_

#include "engines/document_type/features.h"

namespace catalogcore::brenn {

// Sets kPaperTone to kTilePeakSpread.
void MeasureTones(const WorkingCopy& copy, FeatureVector& features);

}  // namespace catalogcore::brenn

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_TONE_FEATURES_H_
