// Records at the edges of what can be, and beyond, with pixels that end where memory ends, or begin where it begins. Built
// twice: with engines that only look at all of what they get, and with the real ones.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <climits>
#include <cstddef>
#include <cstdint>

#include "scene/detect_scene.h"

namespace {

// Memory between two pages that may not be touched.
class GuardedMemory {
 public:
  explicit GuardedMemory(std::size_t size) : size_((size + kPage - 1) / kPage * kPage) {
    first_ =
        static_cast<std::uint8_t*>(mmap(nullptr, size_ + 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    EXPECT_NE(first_, MAP_FAILED);
    EXPECT_EQ(mprotect(first_ + kPage, size_, PROT_READ), 0);
  }
  ~GuardedMemory() { munmap(first_, size_ + 2 * kPage); }
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  const std::uint8_t* First() const { return first_ + kPage; }
  const std::uint8_t* Last(std::size_t size) const { return First() + size_ - size; }

 private:
  static constexpr std::size_t kPage = std::size_t{1} << 16;  // the largest that there is
  const std::size_t size_;
  std::uint8_t* first_;
};

constexpr std::size_t kMostBytes = std::size_t{4096} * (51 * 8 + 5);  // of the largest picture here
constexpr std::int32_t kDepths[] = {0, 1, 8, 15, 16, 24, 32, 48, 64, -1};
#ifdef CATALOGCORE_TEST_REAL_ENGINES
constexpr std::int32_t kResolutions[] = {150};
#else
constexpr std::int32_t kResolutions[] = {INT_MIN, 150, 300, INT_MAX};
#endif

// The bytes of the picture, if it describes any: 0 where what is described cannot be.
std::size_t BytesOf(const IDXDSDATA& record) {
  const bool isSize = record.width >= 0 && record.height > 0 && record.rowBytes > 0 && record.bitsPerPixel >= 0;
  const std::int64_t bytes = std::int64_t{record.rowBytes} * record.height;
  const bool fits = std::int64_t{record.bitsPerPixel / 8} * record.width <= record.rowBytes && bytes <= INT_MAX;
  return isSize && fits ? static_cast<std::size_t>(bytes) : 0;
}

class GuardedPixels : public testing::Test {
 protected:
  GuardedPixels() {
    dsScene = &detector_;
    EXPECT_EQ(detector_.Initialize(), IDX_OK);
  }
  ~GuardedPixels() override { dsScene = nullptr; }

  void Detect(IDXDSDATA record) {
    SCOPED_TRACE(testing::Message() << record.width << " x " << record.height << " x " << record.bitsPerPixel
                                    << ", rows of " << record.rowBytes << ", at " << record.resolution);
    const std::size_t bytes = BytesOf(record);
    if (bytes > kMostBytes) return;
    for (const std::uint8_t* const pixels : {memory_.First(), memory_.Last(bytes)}) {
      record.pixels = pixels;
      record.presetIndex = 7;
      const IDXSTATUS status = IDXDetectScene(&record);
      EXPECT_TRUE(status == IDX_OK || record.presetIndex == -1);
      const bool isPicture = record.width > 0 && record.height > 0;
      if (isPicture && (record.width < 50 || record.height < 50)) {
        EXPECT_EQ(record.presetIndex, IDXPRESET_PHOTO_OTHER);
      } else if (isPicture && (record.width > 4096 || record.height > 4096)) {
        EXPECT_EQ(status, static_cast<IDXSTATUS>(IDXERR_IMAGESIZE));
      } else if (bytes == 0) {
        EXPECT_EQ(status, static_cast<IDXSTATUS>(IDX_OK));
        EXPECT_EQ(record.presetIndex, -1);
      } else {  // the engines may refuse it, but with a code of theirs
        EXPECT_TRUE(status == IDX_OK || (status > IDXERR_RECOGNIZER && status < IDXERR_FACES + 256)) << status;
        EXPECT_TRUE(status != IDX_OK || record.presetIndex > 0);
        ++detected_;
      }
      for (const int target : {75, 50, 37}) {  // reduced by other factors, and from these pixels themselves
        CIDXImage image;
        image.SetImageData(&record);
        EXPECT_EQ(image.SetImageBuffer(pixels) == IDX_OK, bytes > 0);
        EXPECT_EQ(image.SetImageBufferWithResolution(pixels, target, 1) == IDX_OK, bytes > 0);
        EXPECT_EQ(image.SetImageBuffer(nullptr), IDXERR_PARAM);
      }
    }
  }

  const GuardedMemory memory_{kMostBytes};
  CDetectScene detector_;
  int detected_ = 0;
};

TEST_F(GuardedPixels, AreReadToTheirEndAndNotBeyond) {
  constexpr std::int32_t kSides[][2] = {
      {0, 0},       {0, 51},  {51, 0},    {1, 1},       {49, 4097},         {50, 49},
      {50, 50},     {51, 50}, {50, 4096}, {4096, 51},   {4097, 50},         {0, 4097},
      {-1, 50},     {50, -1}, {403, 411}, {INT_MAX, 1}, {INT_MAX, INT_MAX}, {INT_MIN, 50},
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
