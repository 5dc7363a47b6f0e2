// Records with sizes at and beyond every limit. Their pixels end where readable memory ends, or begin where it begins,
// so reading outside them crashes. Built twice: with fake engines that read every pixel, and with the real engines.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>

#include "api/catalogue.h"
#include "scene/detect_scene.h"

namespace catalogcore {

namespace {

constexpr std::int64_t kMostBytes = 4096 * (51 * 8 + 5);  // of the largest picture here
constexpr std::int32_t kDepths[] = {0, 1, 8, 15, 16, 24, 32, 48, 64, -1};
#ifdef CATALOGCORE_TEST_REAL_ENGINES
constexpr std::int32_t kResolutions[] = {150};
#else
constexpr std::int32_t kResolutions[] = {INT_MIN, 150, 300, INT_MAX};
#endif

class GuardedPixels : public testing::Test {
 protected:
  GuardedPixels()
      : memory_(static_cast<std::uint8_t*>(mmap(nullptr, kAll, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
    EXPECT_EQ(mprotect(memory_ + kPage, kAll - 2 * kPage, PROT_READ), 0);
    dsScene = &detector_;
    EXPECT_EQ(detector_.Initialize(), IDX_OK);
  }
  ~GuardedPixels() override {
    dsScene = nullptr;
    munmap(memory_, kAll);
  }

  void Detect(IDXDSDATA record) {
    SCOPED_TRACE(testing::Message() << record.width << " x " << record.height << " x " << record.bitsPerPixel
                                    << ", rows of " << record.rowBytes << ", at " << record.resolution);
    const std::int64_t product = std::int64_t{record.rowBytes} * record.height;
    const auto size = static_cast<std::int32_t>(product);  // as the library computes it, in 32 bits
    const bool isSize = size >= 0 && size == product;
    if (isSize && size > kMostBytes) return;
    const std::int32_t shortSide = std::min(record.width, record.height), factor = record.resolution / 75;
    const bool isReduced = factor > 1 && shortSide / factor >= 50;
    // The size of a reduced row in 32 bits, as the library computes it.
    const auto rowBits =
        static_cast<std::int32_t>(std::int64_t{record.width} / std::max(factor, 1) * record.bitsPerPixel);
    const bool isNegative = isReduced && rowBits <= -32;
    IDXSTATUS copied = isSize && !isNegative ? IDX_OK : IDXERR_MEMORY;
    if (size == 0) copied = IDXERR_PARAM;
    for (const std::uint8_t* const pixels : {memory_ + kPage, memory_ + kAll - kPage - (isSize ? size : 0)}) {
      CIDXImage image;  // without the detector's copy of the pixels
      image.SetImageData(&record);
      EXPECT_EQ(image.SetImageBufferWithResolution(pixels, 75, 1), copied);
      record.pixels = pixels;
      const IDXSTATUS status = IDXDetectScene(&record);
      EXPECT_TRUE(status == IDX_OK || record.presetIndex == -1);
      if (shortSide > 0 && shortSide < 50) {
        EXPECT_EQ(record.presetIndex, IDXPRESET_PHOTO_OTHER);
      } else if (shortSide > 0 && std::max(record.width, record.height) > 4096) {
        EXPECT_TRUE(status == IDXERR_IMAGESIZE) << status;
      } else if (copied != IDX_OK) {
        EXPECT_TRUE(status == (size == 0 ? IDX_OK : IDXERR_MEMORY) && record.presetIndex == -1) << status;
      } else {
        EXPECT_TRUE(status == IDX_OK ? record.presetIndex > 0 || shortSide <= 0 : status > IDXERR_RECOGNIZER) << status;
        ++detected_;
      }
    }
  }

  static constexpr std::size_t kPage = std::size_t{1} << 16;  // a multiple of every page size
  static constexpr std::size_t kAll = (kMostBytes / kPage + 3) * kPage;
  std::uint8_t* const memory_;
  CDetectScene detector_;
  int detected_ = 0;
};

TEST_F(GuardedPixels, AreReadToTheirEndAndNotBeyond) {
  constexpr std::int32_t kSides[][2] = {
      {0, 0},       {0, 51},  {51, 0},    {1, 1},       {49, 4097},         {50, 49},
      {50, 50},     {51, 50}, {50, 4096}, {4096, 51},   {4097, 50},         {0, 4097},
      {-1, 50},     {50, -1}, {404, 412}, {INT_MAX, 1}, {INT_MAX, INT_MAX}, {INT_MIN, 50},
      {50, INT_MIN}};
  for (const auto& [width, height] : kSides) {
    for (const std::int32_t depth : kDepths) {
      const auto pixels = static_cast<std::int32_t>(std::int64_t{width} * (depth / 8) & (INT_MAX >> 1));
      for (const std::int32_t rowBytes : {pixels, pixels + 1, pixels + 5, pixels - 1, -pixels, 0, INT_MAX, INT_MIN}) {
        for (const std::int32_t resolution : kResolutions) {
          Detect({nullptr, width, height, rowBytes, depth, resolution, 0, 0, 0, 0, 0});
        }
      }
    }
  }
  EXPECT_GT(detected_, 250);
}

}  // namespace

}  // namespace catalogcore
