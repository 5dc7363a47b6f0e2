#include "scene/idx_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "scene/block_average.h"
#include "scene/tone_curve.h"

namespace catalogcore {

namespace {

// Random bytes; the sanitized build sees every read beyond them.
class RandomBytes {
 public:
  explicit RandomBytes(std::size_t size, unsigned seed = 1) : bytes_(size) {
    std::minstd_rand random(seed);
    for (std::uint8_t& byte : bytes_) byte = static_cast<std::uint8_t>(random() >> 8);
  }
  const std::uint8_t* data() const { return bytes_.data(); }
  std::uint8_t* data() { return bytes_.data(); }

 private:
  std::vector<std::uint8_t> bytes_;
};

IDXDSDATA Record(std::int32_t width, std::int32_t height, std::int32_t rowBytes, std::int32_t bits,
                 std::int32_t resolution = 0) {
  return {nullptr, width, height, rowBytes, bits, resolution, 1, 2, 3, 4, 0};
}

CIDXImage Described(const IDXDSDATA& record) {
  CIDXImage image;
  EXPECT_EQ(image.SetImageData(&record), IDX_OK);
  return image;
}

std::vector<std::uint8_t> PixelsOf(const CIDXImage& image) {
  return {image.pixels.get(), image.pixels.get() + image.bufferSize};
}

std::size_t Size(std::int32_t size) { return static_cast<std::size_t>(size); }

// The reduction, one byte after the other.
std::vector<std::uint8_t> PlainReduction(const std::uint8_t* source, const IDXDSDATA& of, int factor, bool curved) {
  const int width = of.width / factor, height = of.height / factor, bytes = of.bitsPerPixel / 8;
  const int rowBytes = (width * of.bitsPerPixel + 31) / 32 * 4;
  std::vector<std::uint8_t> reduced(Size(rowBytes * height));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (int b = 0; b < bytes; ++b) {
        int sum = 0;
        for (int dy = 0; dy < factor; ++dy) {
          for (int dx = 0; dx < factor; ++dx) {
            sum += source[(y * factor + dy) * of.rowBytes + (x * factor + dx) * bytes + b];
          }
        }
        const auto average = static_cast<std::uint8_t>(sum / (factor * factor));
        reduced[Size(y * rowBytes + x * bytes + b)] = curved ? ka1DLUT[average] : average;
      }
    }
  }
  return reduced;
}

// The tone-curved copy: three bytes for every pixel of a row, running on into the next.
std::vector<std::uint8_t> PlainCurvedCopy(const std::uint8_t* source, const IDXDSDATA& of) {
  std::vector<std::uint8_t> copy(Size(of.rowBytes * of.height));
  for (int y = 0; y < of.height; ++y) {
    for (int i = 0; i < 3 * of.width; ++i) {
      const std::size_t at = Size(y * of.rowBytes + i);
      if (at < copy.size()) copy[at] = ka1DLUT[source[at]];
    }
  }
  return copy;
}

TEST(ToneCurve, IsGammaOnePointEightRounded) {
  for (std::size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(ka1DLUT[i], std::floor(255 * std::pow(static_cast<double>(i) / 255, 1.8) + 0.5)) << i;
  }
}

TEST(CIDXImage, CopiesOfEveryDepth) {
  for (const int bits : {0, 1, 8, 12, 16, 24, 32, 48}) {
    for (const int padding : {0, 1, 5, 300}) {
      const IDXDSDATA record = Record(67, 9, 67 * (bits / 8) + padding + (bits < 8), bits);
      const std::size_t size = Size(record.rowBytes * record.height);
      const RandomBytes source(size);
      CIDXImage plain = Described(record), curved = plain;
      ASSERT_EQ(plain.SetImageBuffer(source.data()), IDX_OK);
      ASSERT_EQ(curved.SetImageBufferWithGammaTransfer(source.data()), IDX_OK);
      EXPECT_EQ(PixelsOf(plain), std::vector(source.data(), source.data() + size)) << bits << ' ' << padding;
      EXPECT_EQ(PixelsOf(curved), PlainCurvedCopy(source.data(), record)) << bits << ' ' << padding;
    }
  }
}

TEST(CIDXImage, ReducesAsTheBytewiseAverageDoes) {
  std::minstd_rand random(7);
  const auto below = [&](unsigned n) { return static_cast<int>((random() >> 4) % n); };
  for (const int bits : {4, 8, 12, 16, 24, 32, 40, 48}) {
    for (const int factor : {2, 3, 4, 5, 6, 7, 8, 9, 13, 17}) {
      const int width = factor * (50 + below(90)) + below(static_cast<unsigned>(factor));
      const int height = factor * (50 + below(4)) + below(static_cast<unsigned>(factor));
      const IDXDSDATA record = Record(width, height, width * (bits / 8) + 1 + below(40), bits, 75 * factor + below(75));
      const RandomBytes source(Size(record.rowBytes * height), static_cast<unsigned>(bits * factor));
      for (const int gamma : {0, 1, 2}) {
        SCOPED_TRACE(testing::Message() << bits << " bits by " << factor << ", gamma " << gamma);
        CIDXImage image = Described(record);
        ASSERT_EQ(image.SetImageBufferWithResolution(source.data(), 75, gamma), IDX_OK);
        ASSERT_EQ(PixelsOf(image), PlainReduction(source.data(), record, factor, gamma == 1));
        EXPECT_EQ(std::tie(image.width, image.height, image.resolution, image.bytesPerPixel),
                  std::make_tuple(width / factor, height / factor, record.resolution / factor, bits / 8));
      }
    }
  }
}

// Blocks that a picture of at least 50 x 50 of them would make too large for a test.
TEST(AverageBlocks, HugeBlocksAndPixels) {
  using Case = std::tuple<int, int>;
  for (const auto& [factor, bytes] :
       {Case{257, 1}, {257, 3}, {258, 1}, {400, 3}, {926, 1}, {2, 512}, {2, 513}, {5, 999}}) {
    const IDXDSDATA record = Record(3 * factor, 2 * factor, 3 * factor * bytes, 8 * bytes);
    RandomBytes source(Size(record.rowBytes * record.height));
    std::fill_n(source.data(), Size(factor) * Size(record.rowBytes), std::uint8_t{255});
    const std::int32_t rowBytes = (3 * bytes + 3) / 4 * 4;
    std::vector<std::uint8_t> target(Size(2 * rowBytes), 1);
    AverageBlocks({source.data(), record.height, record.rowBytes}, {3, factor, bytes}, ka1DLUT,
                  {target.data(), 2, rowBytes});
    EXPECT_EQ(target, PlainReduction(source.data(), record, factor, true)) << factor << ' ' << bytes;
  }
}

TEST(CIDXImage, ReducesTowardsTheTargetDownTo50Pixels) {
  struct Case {
    int width, height, resolution, target;  // handed in
    int newWidth, newHeight, newRowBytes, newResolution;
  };
  constexpr int kMost = std::numeric_limits<int>::max();
  for (const Case& c : {Case{2480, 351, 300, 75, 620, 87, 1860, 75},
                        {200, 200, 300, 75, 50, 50, 152, 75},
                        {199, 400, 300, 75, 199, 400, 597, 300},
                        {400, 400, 0, 75, 400, 400, 1200, 0},
                        {400, 400, 300, 0, 400, 400, 1200, 300},
                        {400, 400, kMost, 1, 400, 400, 1200, kMost}}) {
    SCOPED_TRACE(testing::Message() << c.width << " x " << c.height << " at " << c.resolution);
    const IDXDSDATA record = Record(c.width, c.height, 3 * c.width, 24, c.resolution);
    const RandomBytes source(Size(record.rowBytes * record.height));
    CIDXImage image = Described(record), plain = image;
    ASSERT_EQ(image.SetImageBufferWithResolution(source.data(), c.target, 1), IDX_OK);
    EXPECT_EQ(std::tie(image.width, image.height, image.rowBytes, image.resolution, image.bufferSize),
              std::make_tuple(c.newWidth, c.newHeight, c.newRowBytes, c.newResolution, c.newRowBytes * c.newHeight));
    if (c.newWidth != c.width) continue;
    EXPECT_EQ(PixelsOf(image), PlainCurvedCopy(source.data(), record));
    ASSERT_EQ(plain.SetImageBufferWithResolution(source.data(), c.target, 0), IDX_OK);
    EXPECT_EQ(PixelsOf(plain), std::vector(source.data(), source.data() + Size(record.rowBytes * record.height)));
  }
  // The bytes of this one can be, but not its reduced picture's. The guarded pixels try other sizes.
  const RandomBytes none(1);
  CIDXImage tooLarge = Described(Record(kMost, kMost, 1, 7, 150));
  EXPECT_EQ(tooLarge.SetImageBufferWithResolution(none.data(), 75, 1), IDXERR_MEMORY);
}

TEST(CIDXImage, ReducesRowsThatContinueInTheRowsBelow) {
  const IDXDSDATA record = Record(200, 100, 599, 24, 150);  // one byte short
  const std::size_t size = Size(record.rowBytes * record.height);
  const RandomBytes source(size);
  std::vector<std::uint8_t> continued(source.data(), source.data() + size);
  continued.resize(size + 1, 0);  // the last pixel's last byte lies beyond the source
  CIDXImage image = Described(record);
  ASSERT_EQ(image.SetImageBufferWithResolution(source.data(), 75, 1), IDX_OK);
  EXPECT_EQ(PixelsOf(image), PlainReduction(continued.data(), record, 2, true));
}

TEST(CIDXImage, FilledAgainItReleasesItsOwnPixels) {
  const IDXDSDATA record = Record(120, 110, 360, 24, 150);
  const RandomBytes source(Size(record.rowBytes * record.height));
  CIDXImage image = Described(record);
  ASSERT_EQ(image.SetImageBuffer(source.data()), IDX_OK);
  ASSERT_EQ(image.SetImageBuffer(image.pixels.get()), IDX_OK);
  ASSERT_EQ(image.SetImageBufferWithResolution(image.pixels.get(), 75, 0), IDX_OK);
  EXPECT_EQ(PixelsOf(image), PlainReduction(source.data(), record, 2, false));
}

}  // namespace

}  // namespace catalogcore
