// The recognizer through its only operation, with the shipped parameter block.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <span>
#include <vector>

#include "engines/document_type/features.h"
#include "engines/document_type/model.h"
#include "scene/brenn.h"
#include "tests/engines/painted.h"

namespace catalogcore::document_type {
namespace {

using tools::PreparedPicture;
using tools::PreparePicture;
using tools::SourcePicture;
using BlockBytes = std::vector<std::uint8_t>;

const BlockBytes& ShippedBlock() {
  static std::ifstream file(BRENN_PARAMETER_FILE, std::ios::binary);
  static const BlockBytes block(std::istreambuf_iterator<char>(file), {});
  return block;
}

// Expects the code and returns the result word.
std::uint16_t Recognize(const PreparedPicture& picture, Fault expected = Fault::kNone,
                        const BlockBytes& block = ShippedBlock()) {
  std::array<unsigned char, kBrennResultSize> result{};
  const std::int32_t code =
      DocumentTypeRecognize(0, "CatalogCr       ", picture.record.data(), picture.pixels.data(), result.data(),
                            static_cast<std::uint32_t>(block.size()), block.data());
  EXPECT_EQ(code, static_cast<std::int32_t>(expected));
  std::uint16_t word = 0;
  std::memcpy(&word, result.data(), sizeof word);
  return word;
}

// Lines of words of upright strokes in `ink` on `paper`, and a coloured rectangle if `hasPicture`.
SourcePicture Page(std::int32_t bitsPerPixel, PaintedColour paper = {250, 250, 250}, PaintedColour ink = {35, 30, 40},
                   bool hasPicture = false) {
  return Painted(600, 840, bitsPerPixel, [=](int x, int y) {
    if (hasPicture && x >= 100 && x < 400 && y >= 300 && y < 500) return PaintedColour{20, 250, 250};
    const int line = y / 14;
    const bool written = x > 60 && x < 540 && y > 60 && y < 760 && y % 14 < 8 && (x / 6 + line * 5) % 7 != 0;
    const bool isInk = written && ((x * 7 + line * 3) % 5 < 2 || (y % 14 == 3 && x % 11 < 6));
    return isInk ? ink : paper;
  });
}

// Hills of several sizes and colours with grain; `isExchanged` exchanges the first and the third sample.
SourcePicture Landscape(std::int32_t bitsPerPixel, std::int32_t width = 640, bool isExchanged = false) {
  std::mt19937 grain(2);
  return Painted(width, 480, bitsPerPixel, [&grain, isExchanged](int x, int y) {
    double tone = 120 - 0.1 * y;
    for (double size = 90; size > 2; size *= 0.6) {
      tone += size * 0.5 * std::sin(x / size + 3 * size) * std::cos(y / size * 1.3 + std::sin(x / size / 2));
    }
    tone += static_cast<double>(grain() % 12);
    const double first = tone * 0.7, third = tone * 0.5 + 40;
    return isExchanged ? PaintedColour{third, tone, first} : PaintedColour{first, tone, third};
  });
}

TEST(Brenn, DecidesPagesAndPhotographsAtEveryDepth) {
  for (const std::int32_t bits : {8, 16, 24, 48}) {
    for (const std::int32_t resolution : {0, 150}) {
      SourcePicture page = Page(bits), photograph = Landscape(bits);
      page.resolution = photograph.resolution = resolution;
      EXPECT_EQ(Recognize(PreparePicture(page)), kPrintOnPaper) << bits << " bits, " << resolution << " dpi";
      EXPECT_EQ(Recognize(PreparePicture(photograph)), kPhotograph) << bits << " bits, " << resolution << " dpi";
    }
  }
  EXPECT_EQ(Recognize(PreparePicture(Page(24, {250, 250, 250}, {35, 30, 40}, true))), kDocumentWithPictures);
}

FeatureVector Features(const SourcePicture& source) {
  const PreparedPicture picture = PreparePicture(source);
  CheckedRecord record{};
  EXPECT_EQ(ReadRecord(picture.record.data(), record), Fault::kNone);
  return MeasureFeatures(MakeWorkingCopy(AnalysedArea(record, picture.pixels.data())));
}

// Every feature, so that an error in a feature shows whatever its weight in the model is.
TEST(Brenn, MeasuresEveryFeature) {
  const FeatureVector page = {
      0.7937, 0.8446, 1,      0,      0.1554, 0.1039, 1,      0.1554, 0.6825, 0,      0.7907, 1,      0,      0.6966, 0,
      0.3034, 1,      0.9063, 0.2619, 0,      1,      0.1594, 0.5365, 0.1652, 0.6113, 0.796,  0.1976, 1,      1,      0,
      0,      1,      0.9675, 0.1082, 0.1691, 0.0412, 0.1669, 0.4166, 0.0838, 0.2461, 0.8526, 0.0402, 9.6653,
  };
  const FeatureVector landscape = {
      0.3651, 0.4403, 0.4936, 0.259,  0.0109, 0.7562, 0.6505, 0.3992, 0.1511, 0.2284, 0.7674,
      0.2891, 0.0899, 0.3645, 0.6355, 0,      0,      0,      0.754,  0.246,  0.2574, 0.9724,
      1.1195, 0,      0,      0.0106, 0.5017, 0,      0.0118, 0.0477, 0.0483, 0.0222, 0.8519,
      0.6256, 0.1809, 0.1524, 0.3962, 0.418,  0.3045, 0.1281, 0.0106, 0.0508, 9.2574,
  };
  const FeatureVector pageNow = Features(Page(24, {230, 215, 160})), landscapeNow = Features(Landscape(24));
  for (std::size_t i = 0; i < kFeatureCount; ++i) {
    EXPECT_NEAR(pageNow[i], page[i], 0.0006) << i;
    EXPECT_NEAR(landscapeNow[i], landscape[i], 0.0006) << i;
  }
}

TEST(Brenn, IgnoresTheOrderOfSamples) {
  const auto expectEqual = [](const SourcePicture& a, const SourcePicture& b) {
    const FeatureVector measured = Features(a), exchanged = Features(b);
    for (std::size_t i = 0; i < kFeatureCount; ++i) EXPECT_DOUBLE_EQ(measured[i], exchanged[i]) << i;
  };
  expectEqual(Page(24, {230, 215, 160}), Page(24, {160, 215, 230}, {40, 30, 35}));
  expectEqual(Landscape(24), Landscape(24, 640, true));
  expectEqual(Landscape(48, 641), Landscape(48, 641, true));  // the tone curve ends within a pixel
}

TEST(Brenn, RefusesAnInvalidRecord) {
  const PreparedPicture valid = PreparePicture(Page(24));
  const auto with = [&valid](BrennRecordOffset offset, auto value) {
    PreparedPicture picture = valid;
    std::memcpy(picture.record.data() + offset, &value, sizeof value);
    return picture;
  };
  using Short = std::uint16_t;
  EXPECT_EQ(Recognize(with(kBrennTag, Short{0x1081}), Fault::kRecordTag), 0);  // without a result
  Recognize(with(kBrennBitsPerSample, Short{0}), Fault::kBitsPerSample);
  Recognize(with(kBrennBitsPerSample, Short{16}), Fault::kStride);
  Recognize(with(kBrennStride, 0x80000000U), Fault::kPictureSize);  // a negative stride
  Recognize(with(kBrennStride, 600U * 3 - 1), Fault::kStride);
  Recognize(with(kBrennWidth, 0x55555556U), Fault::kPictureSize);  // x 3 is 2 in 32 bits
  Recognize(with(kBrennResolutionX, 74U), Fault::kResolution);
  Recognize(with(kBrennResolutionX, 76U), Fault::kResolution);  // not the vertical one
  Recognize(with(kBrennMarginX, 0xFFFFFFFFU), Fault::kArea);
  Recognize(with(kBrennAreaHeight, 15U), Fault::kArea);
}

TEST(Brenn, RefusesAnInvalidBlock) {
  EXPECT_EQ(CheckSum(std::array<std::uint8_t, 9>{'1', '2', '3', '4', '5', '6', '7', '8', '9'}),
            0xCBF43926U);  // published

  const PreparedPicture picture = PreparePicture(Page(8));
  // The shipped block with `count` bytes changed from `at` on, and the check sum recomputed.
  const auto expect = [&picture](Fault fault, std::size_t at, std::size_t count, std::uint8_t value) {
    BlockBytes block = ShippedBlock();
    std::fill_n(&block[at], count, value);
    const std::uint32_t sum = CheckSum(std::span(block).subspan(20));
    for (std::size_t i = 0; i < 4; ++i) block[16 + i] = static_cast<std::uint8_t>(sum >> (8 * i));
    Recognize(picture, fault, block);
  };
  expect(Fault::kBlockCounts, 20, 1, kFeatureCount + 1);
  expect(Fault::kBlockCounts, 23, 1, 0xFF);
  expect(Fault::kBlockCounts, 32 + kFeatureCount * 8 + 1, 1, 0x7F);  // the first term of an unknown feature
  expect(Fault::kBlockNumber, 36, 4, 0);                             // a scale of 0
  expect(Fault::kBlockNumber, 28, 4, 0xFF);                          // a bias that is not finite

  BlockBytes block = ShippedBlock();
  Recognize(picture, Fault::kBlockTooShort, BlockBytes(block.begin(), block.begin() + 31));
  Recognize(picture, Fault::kBlockSize, BlockBytes(block.begin(), block.end() - 1));
  block.back() ^= 1;
  Recognize(picture, Fault::kBlockChecksum, block);
}

}  // namespace
}  // namespace catalogcore::document_type
