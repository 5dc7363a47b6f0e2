// The model: a logistic regression on the standardised features and on products of two of them.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_MODEL_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_MODEL_H_

#include <array>
#include <cstdint>
#include <vector>

#include "engines/document_type/features.h"

namespace catalogcore::document_type {

// Result words.
inline constexpr std::uint16_t kPrintOnPaper = 0x1000;
inline constexpr std::uint16_t kDocumentWithPictures = 0x2000;
inline constexpr std::uint16_t kPhotograph = 0x3000;

// How far a standardised feature counts: a picture unlike all that the model was trained on must not run away.
inline constexpr double kFarthest = 4;

struct Standard {
  float mean;
  float scale;  // deviation; above 0
};

// weight x feature, or weight x product of two features, all standardised.
struct Term {
  static constexpr std::uint16_t kAlone = 0xFFFF;  // as `second`
  std::uint16_t first;
  std::uint16_t second;
  float weight;
};

// A document has colour or pictures when one of some features, as measured, is above its limit.
struct Limit {
  std::uint16_t feature;
  float most;
};

struct Model {
  std::array<Standard, kFeatureCount> standards;
  float bias;
  std::vector<Term> terms;
  std::vector<Limit> limits;

  // The logarithm of the odds that the picture is a document: above 0 for documents.
  double Score(const FeatureVector& features) const;

  // The result word.
  std::uint16_t Decide(const FeatureVector& features) const;
};

FeatureVector Standardised(const std::array<Standard, kFeatureCount>& standards, const FeatureVector& features);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_MODEL_H_
