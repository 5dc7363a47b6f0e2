// The recognizer on the reduced copy of an A4 scan, compared with the reduction of that scan.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "base/owners.h"
#include "bench/engines/engines_bench.h"
#include "bench/support/ratios.h"
#include "scene/brenn.h"
#include "scene/idx_image.h"
#include "scene/image_record.h"
#include "scene/parameter_resource.h"

namespace catalogcore {

namespace {

// 300 dots per inch, 24 bits: lines of dark strokes on paper.
struct Scan {
  Scan() {
    record.width = 2480;
    record.height = 3508;
    record.rowBytes = 3 * record.width;
    record.bitsPerPixel = 24;
    record.resolution = 300;
    pixels.reserve(static_cast<std::size_t>(record.rowBytes) * static_cast<std::size_t>(record.height));
    for (std::int32_t y = 0; y < record.height; ++y) {
      for (std::int32_t x = 0; x < record.width; ++x) {
        const bool isInk = y % 56 < 30 && x / 24 * 5 % 7 != 0 && (x * 7 / 8 + y / 56 * 3) % 11 < 4;
        const auto tone = static_cast<std::uint8_t>((isInk ? 40 : 236) + (x * 31 + y * 17) % 8);
        pixels.insert(pixels.end(), {tone, tone, static_cast<std::uint8_t>(tone - 10)});
      }
    }
    parameters.reset(OpenParamFile(&parameterSize));
    if (!parameters || Reduce(reduced) != IDX_OK) std::abort();
  }

  IDXSTATUS Reduce(CIDXImage& image) const {
    image.SetImageData(&record);
    return image.SetImageBufferWithResolution(pixels.data(), kRecognizerResolution, 1);
  }

  IDXDSDATA record{};
  std::vector<std::uint8_t> pixels;
  CIDXImage reduced;
  HeapBlock<unsigned char[]> parameters;
  std::uint32_t parameterSize = 0;
};

const Scan& TheScan() {
  static const Scan scan;
  return scan;
}

double Recognize() {
  const Scan& scan = TheScan();
  return Time(1, [&scan] {
    std::array<unsigned char, kBrennResultSize> result{};
    const ImageRecord record(scan.reduced);
    if (DocumentTypeRecognize(0, "CatalogCr       ", record.Bytes(), scan.reduced.pixels.get(), result.data(),
                              scan.parameterSize, scan.parameters.get()) != 0) {
      std::abort();
    }
  });
}

double Reduce() {
  const Scan& scan = TheScan();
  return Time(1, [&scan] {
    CIDXImage image;
    if (scan.Reduce(image) != IDX_OK) std::abort();
  });
}

}  // namespace

void AddRecognizerRows() { AddRow("recognize_a4_300dpi", Recognize, "reduction of scan", Reduce, 31); }

}  // namespace catalogcore
