// The model, a logistic regression on the standardised features and on products of two of them, and the parameter block
// that stores it.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_MODEL_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_MODEL_H_

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "engines/document_type/fault.h"
#include "engines/document_type/features.h"

namespace catalogcore::document_type {

// Result words.
inline constexpr std::uint16_t kPrintOnPaper = 0x1000;
inline constexpr std::uint16_t kDocumentWithPictures = 0x2000;
inline constexpr std::uint16_t kPhotograph = 0x3000;

// Bound of a standardised feature, so that a picture unlike all training pictures has a moderate score.
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

// A document has colour or pictures if a measured feature is above its limit.
struct Limit {
  std::uint16_t feature;
  float most;
};

struct Model {
  std::array<Standard, kFeatureCount> standards;
  float bias;
  std::vector<Term> terms;
  std::vector<Limit> limits;

  // The logarithm of the odds that the picture is a document: above 0 for a document.
  double Score(const FeatureVector& features) const;

  // The result word.
  std::uint16_t Decide(const FeatureVector& features) const;
};

FeatureVector Standardised(const std::array<Standard, kFeatureCount>& standards, const FeatureVector& features);

// The layout of the parameter block. All numbers are stored least significant byte first, floating-point numbers as
// IEEE 754 single precision.
//
// bytes    content
// 0..7     "SGIPPDEF"
// 8..11    version of this layout, kBlockVersion
// 12..15   size of the whole block in bytes
// 16..19   check sum of bytes 20 to the end: CRC-32 as of IEEE 802.3
// 20..21   number of features F, which is kFeatureCount
// 22..23   number of terms T
// 24..25   number of limits L
// 26..27   0
// 28..31   bias
// then     F x (mean, scale)
// then     T x (first feature, second feature or 0xFFFF, weight): 2 + 2 + 4 bytes
// then     L x (feature, 0, limit): 2 + 2 + 4 bytes
inline constexpr std::uint32_t kBlockVersion = 1;

// Parses the block. Returns kNone and fills `model` if the block is valid. Throws std::bad_alloc.
Fault ReadParameterBlock(std::span<const std::uint8_t> block, Model& model);

// The block that ReadParameterBlock parses into `model`. Throws std::bad_alloc.
std::vector<std::uint8_t> MakeParameterBlock(const Model& model);

// CRC-32 of IEEE 802.3: polynomial 0x04C11DB7 bit-reversed, start and end complemented.
std::uint32_t CheckSum(std::span<const std::uint8_t> bytes);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_MODEL_H_
