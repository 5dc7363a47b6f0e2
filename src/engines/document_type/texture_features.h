// Features of how tones change from pixel to pixel and from block to block, and of the ink on its ground.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_TEXTURE_FEATURES_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_TEXTURE_FEATURES_H_

#include "engines/document_type/features.h"

namespace catalogcore::document_type {

// Sets kFlatGradients to kProfileAcross. REQUIRES: kPaperTone is set.
void MeasureTexture(const WorkingCopy& copy, FeatureVector& features);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_TEXTURE_FEATURES_H_
