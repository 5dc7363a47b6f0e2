// Thin lines: pixels that are clearly darker, or clearly lighter, than both pixels a little to either side. Print is
// made of dark ones; in photographs dark and light ones are about as frequent, and both rare.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_LINES_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_LINES_H_

#include "engines/document_type/features.h"

namespace catalogcore::document_type {

// Sets kLineShare and kDarkLines. REQUIRES: kStrongGradients and kMiddlingGradients are set.
void MeasureLines(const WorkingCopy& copy, FeatureVector& features);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_LINES_H_
