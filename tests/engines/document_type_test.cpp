// The recognizer through its one operation, with the parameter block that is shipped.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "engines/document_type/fault.h"
#include "engines/document_type/features.h"
#include "engines/document_type/model.h"
#include "engines/document_type/picture.h"
#include "scene/brenn.h"
#include "tests/engines/painted.h"

namespace catalogcore::document_type {
namespace {

using tools::PreparedPicture;
using tools::SourcePicture;
using Block = std::vector<std::uint8_t>;

constexpr std::uint16_t kDocument = 1;
constexpr std::uint16_t kDocumentWithPictures = 2;
constexpr std::uint16_t kPhotograph = 3;

const Block& ShippedBlock() {
  static const Block block = [] {
    std::ifstream file(BRENN_PARAMETER_FILE, std::ios::binary);
    return Block(std::istreambuf_iterator<char>(file), {});
  }();
  return block;
}

// The result word; the code is checked to be `expected`.
std::uint16_t Recognize(const PreparedPicture& picture, Fault expected = Fault::kNone,
                        const Block& block = ShippedBlock()) {
  std::array<unsigned char, kBrennResultSize> result{};
  const std::int32_t code =
      DocumentTypeRecognize(0, "CatalogCr       ", picture.record.data(), picture.pixels.data(), result.data(),
                            static_cast<std::uint32_t>(block.size()), block.data());
  EXPECT_EQ(code, static_cast<std::int32_t>(expected));
  std::uint16_t word = 0;
  std::memcpy(&word, result.data(), sizeof word);
  return word;
}

std::uint16_t Kind(const SourcePicture& picture) { return Recognize(tools::PreparePicture(picture)) >> 12U; }

// Lines of words of upright strokes on `paper`.
SourcePicture Page(std::int32_t bitsPerPixel, Colour paper = {250, 250, 250}) {
  return Painted(600, 840, bitsPerPixel, [&paper](int x, int y) {
    const int line = y / 14;
    const bool written = x > 60 && x < 540 && y > 60 && y < 760 && y % 14 < 8 && (x / 6 + line * 5) % 7 != 0;
    const bool ink = written && ((x * 7 + line * 3) % 5 < 2 || (y % 14 == 3 && x % 11 < 6));
    return ink ? Colour{35, 30, 40} : paper;
  });
}

// Hills of several sizes and colours under a grain.
SourcePicture Landscape(std::int32_t bitsPerPixel, std::int32_t width = 640, std::int32_t height = 480) {
  std::mt19937 grain(2);
  return Painted(width, height, bitsPerPixel, [&grain](int x, int y) {
    double tone = 120 - 0.1 * y;
    for (double size = 90; size > 2; size *= 0.6) {
      tone += size * 0.5 * std::sin(x / size + 3 * size) * std::cos(y / size * 1.3 + std::sin(x / size / 2));
    }
    tone += static_cast<double>(grain() % 12);
    return Colour{tone * 0.7, tone, tone * 0.5 + 40};
  });
}

SourcePicture OuterSamplesExchanged(SourcePicture picture) {
  const std::size_t sampleBytes = picture.bitsPerPixel == 48 ? 2 : 1;
  for (std::int32_t y = 0; y < picture.height; ++y) {
    auto* pixel = &picture.pixels[static_cast<std::size_t>(y * picture.rowBytes)];
    for (std::int32_t x = 0; x < picture.width; ++x, pixel += 3 * sampleBytes) {
      std::swap_ranges(pixel, pixel + sampleBytes, pixel + 2 * sampleBytes);
    }
  }
  return picture;
}

TEST(Brenn, DecidesPagesAndPhotographsAtEveryDepth) {
  for (const std::int32_t bits : {8, 16, 24, 48}) {
    for (const std::int32_t resolution : {0, 150}) {
      SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(resolution) + " dpi");
      SourcePicture page = Page(bits);
      SourcePicture photograph = Landscape(bits);
      page.resolution = photograph.resolution = resolution;
      EXPECT_EQ(Kind(page), kDocument);
      EXPECT_EQ(Kind(photograph), kPhotograph);
    }
  }
}

FeatureVector Features(const SourcePicture& source) {
  const PreparedPicture picture = tools::PreparePicture(source);
  CheckedRecord record{};
  EXPECT_EQ(ReadRecord(picture.record.data(), record), Fault::kNone);
  return MeasureFeatures(MakeWorkingCopy(AnalysedArea(record, picture.pixels.data())));
}

// Every feature, so that a wrong sign in any of them shows, whatever weight the model gives it.
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

TEST(Brenn, TellsColourOnPaper) {
  SourcePicture page = Page(24);
  for (std::int32_t y = 300; y < 500; ++y) {
    for (std::int32_t x = 100; x < 400; ++x) page.pixels[static_cast<std::size_t>(y * page.rowBytes + x * 3)] = 20;
  }
  EXPECT_EQ(Kind(page), kDocumentWithPictures);
}

TEST(Brenn, DoesNotMindTheOrderOfSamples) {
  const Colour yellowed = {230, 215, 160};
  // An odd width lets the tone curve's reach end within a pixel of the 48-bit copy.
  for (const SourcePicture& picture : {Page(24, yellowed), Page(48, yellowed), Landscape(24), Landscape(48, 641)}) {
    EXPECT_EQ(Recognize(tools::PreparePicture(picture)),
              Recognize(tools::PreparePicture(OuterSamplesExchanged(picture))));
  }
}

template <typename Integer>
PreparedPicture With(PreparedPicture picture, BrennRecordOffset offset, Integer value) {
  std::memcpy(picture.record.data() + offset, &value, sizeof value);
  return picture;
}

TEST(Brenn, RefusesABadRecord) {
  const PreparedPicture good = tools::PreparePicture(Page(24));
  const auto word = [&good](BrennRecordOffset offset, std::uint16_t value) { return With(good, offset, value); };
  const auto number = [&good](BrennRecordOffset offset, std::uint32_t value) { return With(good, offset, value); };
  constexpr std::uint32_t kHuge = std::numeric_limits<std::uint32_t>::max();

  EXPECT_EQ(Recognize(word(kBrennTag, 0x1081), Fault::kRecordTag), 0);  // and the result is left alone
  Recognize(word(kBrennBitsPerSample, 0), Fault::kBitsPerSample);
  Recognize(number(kBrennStride, 0x80000000U), Fault::kPictureSize);  // a negative stride
  Recognize(number(kBrennStride, 600 * 3 - 1), Fault::kStride);
  Recognize(number(kBrennWidth, 0x55555556U), Fault::kPictureSize);  // x 3 is 2 in 32 bits
  Recognize(word(kBrennBitsPerSample, 16), Fault::kStride);
  Recognize(number(kBrennResolutionX, 74), Fault::kResolution);
  Recognize(number(kBrennMarginX, kHuge), Fault::kArea);
  Recognize(number(kBrennAreaHeight, 15), Fault::kArea);
}

// The shipped block with other bytes from `at` on, and the check sum that it should have.
Block Changed(std::size_t at, std::size_t count, std::uint8_t value) {
  Block block = ShippedBlock();
  std::fill_n(block.begin() + static_cast<std::ptrdiff_t>(at), count, value);
  const std::uint32_t sum = CheckSum(std::span<const std::uint8_t>(block).subspan(20));
  for (std::size_t i = 0; i < 4; ++i) block[16 + i] = static_cast<std::uint8_t>(sum >> (8 * i));
  return block;
}

TEST(Brenn, RefusesABadBlock) {
  const std::vector<std::uint8_t> digits = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
  EXPECT_EQ(CheckSum(digits), 0xCBF43926U);  // the published check value of this CRC

  const PreparedPicture picture = tools::PreparePicture(Page(8));
  const Block& good = ShippedBlock();
  Recognize(picture, Fault::kBlockTooShort, Block(good.begin(), good.begin() + 31));
  Recognize(picture, Fault::kBlockSize, Block(good.begin(), good.end() - 1));
  Block otherEnd = good;
  otherEnd.back() ^= 1;
  Recognize(picture, Fault::kBlockChecksum, otherEnd);
  const std::size_t firstTerm = 32 + kFeatureCount * 8;
  Recognize(picture, Fault::kBlockCounts, Changed(20, 1, kFeatureCount + 1));
  Recognize(picture, Fault::kBlockCounts, Changed(23, 1, 0xFF));
  Recognize(picture, Fault::kBlockCounts, Changed(firstTerm + 1, 1, 0x7F));  // a feature that there is not
  Recognize(picture, Fault::kBlockNumber, Changed(36, 4, 0));                // a scale of zero
  Recognize(picture, Fault::kBlockNumber, Changed(28, 4, 0xFF));             // what is no number
}

}  // namespace
}  // namespace catalogcore::document_type
