// Which paper a document is printed on, by its size or, where the resolution is unknown, by its proportions.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "scene/detect_scene.h"

namespace catalogcore {

namespace {

struct Paper {
  double shortSide, longSide;  // inches
};

// The index of a paper is the scene value of its documents.
constexpr Paper PaperSize[] = {
    {2.16, 3.58},   // card, 55 x 91 mm
    {3.93, 5.82},   // postcard, 100 x 148 mm
    {4.0, 6.0},     // 4 x 6 in photo
    {5.82, 8.26},   // A5
    {7.16, 10.11},  // B5 (JIS)
    {8.26, 11.69},  // A4
    {8.5, 11.0},    // Letter
    {8.5, 14.0},    // Legal
};

// Long side over short side, of the same papers; stored, not computed from the rounded sizes above.
constexpr double PaperRatio[] = {1.654, 1.48, 1.5, 1.419, 1.412, 1.415, 1.294, 1.647};
static_assert(std::size(PaperRatio) == std::size(PaperSize));

constexpr double kTolerance = 0.2;

// The paper with the smallest score, the first of equals; a negative score is none. kDocumentOther if there is none.
template <typename Score>
std::int32_t BestPaper(Score score) {
  double best = 200.0;
  std::int32_t value = kDocumentOther;
  for (std::size_t paper = 0; paper < std::size(PaperSize); ++paper) {
    const double found = score(paper);
    if (found < 0 || found >= best) continue;
    best = found;
    value = static_cast<std::int32_t>(paper);
  }
  return value;
}

}  // namespace

IDXSTATUS CDetectScene::DetectDocumentSize(const CIDXImage& image, std::int32_t& sceneValue) {
  constexpr double kNone = -1.0;
  sceneValue = kValueUnknown;
  if (image.width <= 0 || image.height <= 0) return IDX_OK;
  const double shortSide = std::min(image.width, image.height);
  const double longSide = std::max(image.width, image.height);
  const double resolution = image.resolution;
  if (resolution > 0.0) {
    sceneValue = BestPaper([&](std::size_t i) {
      const auto [paperShort, paperLong] = PaperSize[i];
      const double shortError = std::abs(paperShort - shortSide / resolution) / paperShort;
      const double longError = std::abs(paperLong - longSide / resolution) / paperLong;
      return shortError < kTolerance && longError < kTolerance ? shortError + longError : kNone;
    });
  } else {
    sceneValue = BestPaper([&](std::size_t i) {
      const double difference = std::abs(PaperRatio[i] - longSide / shortSide);
      return difference < kTolerance ? difference : kNone;
    });
  }
  return IDX_OK;
}

}  // namespace catalogcore
