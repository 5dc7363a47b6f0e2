// Scene records and their pixels, through the detector, the recognizer and the face detector's grey copy. The input is
// the fields of the record, followed by bytes that are repeated to fill the pixels.
#include <algorithm>
#include <cstring>
#include <vector>

#include "api/index_calls.h"
#include "engines/faces/face_search.h"
#include "fuzz/support/fuzzer.h"

namespace catalogcore {

// Replaces the search, which takes a tenth of a second with the sanitizers: reads every pixel.
void faces::PrepareFaceSearch() {}
std::vector<faces::FoundFace> faces::FindFaces(const PixelView& picture, double threshold) {
  std::size_t sum = 0;
  for (std::int32_t y = 0; y < picture.Rows(); ++y) {
    for (const std::uint8_t tone : picture.Row(y)) sum += tone;
  }
  const auto right = static_cast<double>(picture.Stride()), bottom = static_cast<double>(picture.Rows());
  return std::vector<FoundFace>(sum % 3, {0, 0, right, bottom, threshold});
}

namespace {

// The next number of the input. Bytes after the end of the input are 0.
template <typename Number>
Number Next(std::string_view& input) {
  Number number{};
  const std::size_t size = std::min(sizeof number, input.size());
  std::memcpy(&number, input.data(), size);
  input.remove_prefix(size);
  return number;
}

// In most cases a record that a program would make.
IDXDSDATA NextRecord(std::string_view& input) {
  constexpr std::int32_t kDepths[] = {8, 16, 24, 48};
  IDXDSDATA record{};
  const auto shape = Next<std::uint8_t>(input);
  record.width = Next<std::int16_t>(input);
  record.height = Next<std::int16_t>(input);
  record.bitsPerPixel = (shape & 0x60) == 0x60 ? Next<std::int32_t>(input) : kDepths[shape & 3];
  record.rowBytes = record.width * (record.bitsPerPixel / 8 % 8) + (shape >> 2 & 7);
  if (shape >= 0xE0) record.rowBytes = Next<std::int32_t>(input);
  record.resolution = Next<std::int16_t>(input);
  for (std::int32_t* const hint : {&record.fixedScene, &record.typeHint}) *hint = Next<std::uint8_t>(input);
  for (std::uint16_t* const hint : {&record.photoHint, &record.photoKind}) *hint = Next<std::uint8_t>(input);
  return record;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const IDXSTATUS initialized = IDXInitialize();
  EXPECT_EQ(initialized, IDX_OK);
  constexpr std::int64_t kMostBytes = 1 << 18, kLargestSize = 0x7FFFFFFF;
  std::string_view input = AsText(data, size);
  IDXDSDATA record = NextRecord(input);
  const std::int64_t bytes = std::int64_t{record.rowBytes} * record.height;
  if (bytes > kMostBytes && bytes <= kLargestSize) return 0;
  // The library reads no pixel if the size is negative or does not fit in 32 bits.
  std::vector<char> pixels(bytes > 0 && bytes <= kMostBytes ? static_cast<std::size_t>(bytes) : 1);
  for (std::size_t at = 0; at < pixels.size() && !input.empty(); ++at) pixels[at] = input[at % input.size()];
  record.pixels = pixels.data();

  const IDXSTATUS status = IDXDetectScene(&record);
  const bool isSize = bytes >= 0 && bytes <= kLargestSize;
  const bool isEngines = status > IDXERR_RECOGNIZER && status < IDXERR_FACES + 256 && status != IDXERR_FACES;
  EXPECT_TRUE(status == IDX_OK || status == IDXERR_IMAGESIZE || status == IDXERR_MEMORY || isEngines) << status;
  EXPECT_TRUE(status != IDXERR_MEMORY || !isSize || record.resolution >= 150) << status;
  const bool isPreset = std::count(std::begin(kaPresetIndex), std::end(kaPresetIndex), record.presetIndex) == 1;
  EXPECT_TRUE(record.presetIndex == -1 || (status == IDX_OK && isPreset)) << status << ' ' << record.presetIndex;
  IDXDSDATA again = record;
  EXPECT_EQ(IDXDetectScene(&again), status);
  EXPECT_EQ(again.presetIndex, record.presetIndex);
  return 0;
}

}  // namespace catalogcore
