#include "scene/idx_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "scene/block_average.h"
#include "scene/tone_curve.h"

namespace catalogcore {

namespace {

using PixelBytes = std::vector<std::uint8_t>;

std::size_t Size(std::int32_t size) { return static_cast<std::size_t>(size); }

PixelBytes RandomPixels(const IDXDSDATA& of) {
  PixelBytes bytes(Size(of.rowBytes * of.height));
  std::minstd_rand random;
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 8);
  return bytes;
}

IDXDSDATA Record(std::int32_t width, std::int32_t height, std::int32_t rowBytes, std::int32_t bits,
                 std::int32_t resolution = 0) {
  return {nullptr, width, height, rowBytes, bits, resolution, 1, 2, 3, 4, 0};
}

CIDXImage Described(const IDXDSDATA& record) {
  CIDXImage image;
  EXPECT_EQ(image.SetImageData(&record), IDX_OK);
  return image;
}

PixelBytes PixelsOf(const CIDXImage& image) { return {image.pixels.get(), image.pixels.get() + image.bufferSize}; }

// The reduction, byte by byte. Bytes after the source count as 0.
PixelBytes PlainReduction(const PixelBytes& source, const IDXDSDATA& of, int factor, bool isCurved) {
  const int bytes = of.bitsPerPixel / 8, rowBytes = (of.width / factor * of.bitsPerPixel + 31) / 32 * 4;
  PixelBytes reduced(Size(rowBytes * (of.height / factor)));
  for (int y = 0; y < of.height / factor; ++y) {
    for (int x = 0; x < of.width / factor * bytes; ++x) {
      int sum = 0;
      for (int i = 0; i < factor * factor; ++i) {
        const int column = (x / bytes * factor + i % factor) * bytes + x % bytes;
        const std::size_t at = Size((y * factor + i / factor) * of.rowBytes + column);
        sum += at < source.size() ? source[at] : 0;
      }
      const auto average = static_cast<std::uint8_t>(sum / (factor * factor));
      reduced[Size(y * rowBytes + x)] = isCurved ? ka1DLUT[average] : average;
    }
  }
  return reduced;
}

// The tone-curved copy: three bytes for every pixel of a row, which continue in the next row.
PixelBytes PlainCurvedCopy(const PixelBytes& source, const IDXDSDATA& of) {
  PixelBytes copy(source.size());
  for (int i = 0; i < 3 * of.width * of.height; ++i) {
    const std::size_t at = Size(i / (3 * of.width) * of.rowBytes + i % (3 * of.width));
    if (at < copy.size()) copy[at] = ka1DLUT[source[at]];
  }
  return copy;
}

TEST(ToneCurve, IsGammaOnePointEightRounded) {
  for (std::size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(ka1DLUT[i], std::floor(255 * std::pow(static_cast<double>(i) / 255, 1.8) + 0.5)) << i;
  }
}

TEST(CIDXImage, ReducesAsTheBytewiseAverageDoes) {
  std::minstd_rand random(7);
  const auto below = [&](int n) { return static_cast<int>((random() >> 4) % static_cast<unsigned>(n)); };
  for (const int bits : {0, 1, 8, 12, 16, 24, 32, 40, 48}) {
    for (const int factor : {1, 2, 3, 4, 5, 6, 7, 8, 9, 13, 17}) {
      const int width = factor * (50 + below(90)) + below(factor), height = factor * (50 + below(4)) + below(factor);
      const int rowBytes = std::max(1, width * (bits / 8) - 20 + below(60));  // a row may be shorter than its pixels
      const IDXDSDATA record = Record(width, height, rowBytes, bits, 75 * factor + below(75));
      const PixelBytes source = RandomPixels(record);
      for (const int gamma : {0, 1, 2}) {
        SCOPED_TRACE(testing::Message() << bits << " bits by " << factor << ", gamma " << gamma);
        CIDXImage image = Described(record);
        ASSERT_EQ(image.SetImageBuffer(source.data()), IDX_OK);
        ASSERT_EQ(image.SetImageBufferWithResolution(image.pixels.get(), 75, gamma), IDX_OK);
        const PixelBytes copy = gamma == 1 ? PlainCurvedCopy(source, record) : source;
        ASSERT_EQ(PixelsOf(image), factor == 1 ? copy : PlainReduction(source, record, factor, gamma == 1));
      }
    }
  }
}

// Blocks too large for a picture of at least 50 x 50 of them in a test.
TEST(AverageBlocks, HugeBlocksAndPixels) {
  using Pair = std::pair<int, int>;
  for (const auto& [factor, bytes] : {Pair{257, 1}, {257, 3}, {258, 1}, {400, 3}, {2, 512}, {2, 513}}) {
    const IDXDSDATA record = Record(3 * factor, 2 * factor, 3 * factor * bytes, 8 * bytes);
    PixelBytes source = RandomPixels(record);
    std::fill_n(source.begin(), factor * record.rowBytes, std::uint8_t{255});
    const PixelBytes expected = PlainReduction(source, record, factor, true);
    PixelBytes target(expected.size(), 1);
    AverageBlocks({source.data(), record.height, record.rowBytes}, {3, factor, bytes}, ka1DLUT,
                  {target.data(), 2, target.size() / 2});
    EXPECT_EQ(target, expected) << factor << ' ' << bytes;
  }
}

TEST(CIDXImage, ReducesTowardsTheTargetDownTo50Pixels) {
  constexpr int kMost = std::numeric_limits<int>::max();
  const struct {
    int width, height, resolution, target;
    int newWidth, newHeight, newRowBytes, newResolution;
  } cases[] = {{2480, 351, 300, 75, 620, 87, 1860, 75},    {200, 200, 300, 75, 50, 50, 152, 75},
               {300, 300, 170, 75, 150, 150, 452, 85},     {199, 400, 300, 75, 199, 400, 597, 300},
               {400, 400, 0, 75, 400, 400, 1200, 0},       {400, 400, 300, 0, 400, 400, 1200, 300},
               {400, 400, kMost, 1, 400, 400, 1200, kMost}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.width << " x " << c.height << " at " << c.resolution);
    const IDXDSDATA record = Record(c.width, c.height, 3 * c.width, 24, c.resolution);
    const PixelBytes source = RandomPixels(record);
    CIDXImage image = Described(record);
    ASSERT_EQ(image.SetImageBufferWithResolution(source.data(), c.target, 1), IDX_OK);
    EXPECT_EQ(
        std::tie(image.width, image.height, image.rowBytes, image.resolution, image.bufferSize, image.bytesPerPixel),
        std::make_tuple(c.newWidth, c.newHeight, c.newRowBytes, c.newResolution, c.newRowBytes * c.newHeight, 3));
  }
}

}  // namespace

}  // namespace catalogcore
