#include "engines/document_type/model.h"

#include <algorithm>

namespace catalogcore::document_type {

FeatureVector Standardised(const std::array<Standard, kFeatureCount>& standards, const FeatureVector& features) {
  FeatureVector standardised;
  for (std::size_t i = 0; i < kFeatureCount; ++i) {
    const double distance = (features[i] - standards[i].mean) / standards[i].scale;
    standardised[i] = std::clamp(distance, -kFarthest, kFarthest);
  }
  return standardised;
}

double Model::Score(const FeatureVector& features) const {
  const FeatureVector values = Standardised(standards, features);
  double score = bias;
  for (const Term& term : terms) {
    const double other = term.second == Term::kAlone ? 1 : values[term.second];
    score += term.weight * values[term.first] * other;
  }
  return score;
}

std::uint16_t Model::Decide(const FeatureVector& features) const {
  if (Score(features) <= 0) return kPhotograph;
  const bool pictures = std::any_of(limits.begin(), limits.end(),
                                    [&](const Limit& limit) { return features[limit.feature] > limit.most; });
  return pictures ? kDocumentWithPictures : kPrintOnPaper;
}

}  // namespace catalogcore::document_type
