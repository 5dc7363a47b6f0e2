// Features of the tones alone, wherever they lie, and of the tones tile by tile.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_TONE_FEATURES_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_TONE_FEATURES_H_

#include "engines/document_type/features.h"

namespace catalogcore::document_type {

// Sets kPaperTone to kTilePeakSpread.
void MeasureTones(const WorkingCopy& copy, FeatureVector& features);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_TONE_FEATURES_H_
