// Records at the edges of what can be, and beyond, with pixels that end where memory ends, or begin where it begins. Built
// twice: with engines that only look at all of what they get, and with the real ones.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>

#include "api/catalogue.h"
#include "scene/detect_scene.h"

namespace catalogcore {

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
constexpr bool kEnginesRefuse = true;
#else
constexpr std::int32_t kResolutions[] = {INT_MIN, 150, 300, INT_MAX};
constexpr bool kEnginesRefuse = false;
#endif

// rowBytes x height as the library has it: in 32 bits.
std::int32_t SizeOf(const IDXDSDATA& record) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(record.rowBytes) *
                                   static_cast<std::uint32_t>(record.height));
}

bool IsNegativeOrWrapped(const IDXDSDATA& record) {
  return SizeOf(record) < 0 || SizeOf(record) != std::int64_t{record.rowBytes} * record.height;
}

// The bytes of the picture; 0 where no buffer of that size can be.
std::size_t BytesOf(const IDXDSDATA& record) {
  return IsNegativeOrWrapped(record) ? 0 : static_cast<std::size_t>(SizeOf(record));
}

// Whether the picture is reduced by `factor`, and to a number of bytes that cannot be.
bool IsReduced(const IDXDSDATA& record, std::int32_t factor) {
  return factor > 1 && std::min(record.width, record.height) / factor >= 50;
}
bool IsReducedBeyondSizes(const IDXDSDATA& record, std::int32_t factor) {
  if (!IsReduced(record, factor)) return false;
  const std::int64_t bits = std::int64_t{record.width / factor} * record.bitsPerPixel + 31;
  return bits < 0 || bits / 32 * 4 * (record.height / factor) > INT_MAX;
}

// What the engines say of a picture that is handed to them as it is described.
bool IsRefused(const IDXDSDATA& record) {
  const std::int32_t bits = record.bitsPerPixel;
  const bool isDepth = bits == 8 || bits == 16 || bits == 24 || bits == 48;
  return !isDepth || std::min(record.width, record.height) < 50 ||
         record.rowBytes < std::int64_t{record.width} * (bits / 8);
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
      const std::int32_t factor = record.resolution / 75;
      if (isPicture && (record.width < 50 || record.height < 50)) {
        EXPECT_EQ(record.presetIndex, IDXPRESET_PHOTO_OTHER);
      } else if (isPicture && (record.width > 4096 || record.height > 4096)) {
        EXPECT_EQ(status, static_cast<IDXSTATUS>(IDXERR_IMAGESIZE));
      } else if (SizeOf(record) == 0) {
        EXPECT_EQ(status, static_cast<IDXSTATUS>(IDX_OK));
        EXPECT_EQ(record.presetIndex, -1);
      } else if (bytes == 0 || IsReducedBeyondSizes(record, factor)) {
        EXPECT_EQ(status, static_cast<IDXSTATUS>(IDXERR_MEMORY));
      } else if (kEnginesRefuse && IsRefused(record) && !IsReduced(record, factor)) {
        EXPECT_TRUE(status > IDXERR_RECOGNIZER && status < IDXERR_FACES) << status;
        ++detected_;
      } else {
        EXPECT_TRUE(status == IDX_OK || (kEnginesRefuse && status > IDXERR_RECOGNIZER)) << status;
        EXPECT_TRUE(status != IDX_OK || record.presetIndex > 0 || record.width <= 0 || record.height <= 0);
        ++detected_;
      }
      for (const int target : {75, 50, 37}) {  // reduced by other factors, and from these pixels themselves
        CIDXImage image;
        image.SetImageData(&record);
        IDXSTATUS expected = bytes > 0 ? IDX_OK : IDXERR_MEMORY;
        if (SizeOf(record) == 0) expected = IDXERR_PARAM;
        EXPECT_EQ(image.SetImageBuffer(pixels), expected);
        const bool isBeyond = expected == IDX_OK && IsReducedBeyondSizes(record, record.resolution / target);
        if (isBeyond) expected = IDXERR_MEMORY;
        EXPECT_EQ(image.SetImageBufferWithResolution(pixels, target, 1), expected);
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

}  // namespace catalogcore
