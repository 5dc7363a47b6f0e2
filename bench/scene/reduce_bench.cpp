#include "bench/scene/reduce_bench.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <string>

#include "bench/support/ratios.h"
#include "scene/idx_image.h"
#include "scene/tone_curve.h"

namespace catalogcore {

namespace {

constexpr int kSide = 4096;
constexpr int kTarget = 75;

// A picture, a place for its copy, and the curve.
struct Bed {
  explicit Bed(int bits)
      : bytesPerPixel(bits / 8), source(kSide, kSide, CV_8UC(bytesPerPixel)), copy(source.size(), source.type()) {
    std::minstd_rand random(1);
    for (std::size_t i = 0; i < Size(); ++i) source.data[i] = static_cast<std::uint8_t>(random() >> 8);
    std::memcpy(curve.data, ka1DLUT.data(), ka1DLUT.size());
  }
  std::size_t Size() const { return std::size_t{kSide} * kSide * static_cast<std::size_t>(bytesPerPixel); }

  int bytesPerPixel;
  cv::Mat source, copy;
  cv::Mat curve = cv::Mat(1, 256, CV_8U);
};

void Reduce(const Bed& bed, int factor) {
  IDXDSDATA record{};
  record.width = record.height = kSide;
  record.bitsPerPixel = 8 * bed.bytesPerPixel;
  record.rowBytes = kSide * bed.bytesPerPixel;
  record.resolution = kTarget * factor;
  CIDXImage image;
  image.SetImageData(&record);
  if (image.SetImageBufferWithResolution(bed.source.data, kTarget, 1) != IDX_OK) std::abort();
}

// Into new pictures, as ours is: a detection makes its copy anew too.
void ReduceWithOpenCv(const Bed& bed, int factor) {
  cv::Mat reduced;
  cv::Mat curved;
  cv::resize(bed.source, reduced, {kSide / factor, kSide / factor}, 0, 0, cv::INTER_AREA);
  cv::LUT(reduced, bed.curve, curved);
}

void Copy(Bed& bed) { std::memcpy(bed.copy.data, bed.source.data, bed.Size()); }

}  // namespace

void AddReduceRows() {
  cv::setNumThreads(1);
  for (const int bits : {8, 24}) {
    for (const int factor : {2, 4, 8}) {
      const auto bed = std::make_shared<std::unique_ptr<Bed>>();  // made on first use: a filter may leave it out
      const auto round = [bed, bits](auto work) -> Round {
        return [bed, bits, work] {
          if (!*bed) *bed = std::make_unique<Bed>(bits);
          return Time(1, [&] { work(**bed); });
        };
      };
      const std::string name = "reduce_" + std::to_string(factor) + "_" + std::to_string(bits);
      const Round ours = round([factor](const Bed& picture) { Reduce(picture, factor); });
      AddRow(name, ours, "OpenCV area, LUT", round([factor](const Bed& picture) { ReduceWithOpenCv(picture, factor); }),
             15);
      AddRow(name + "_memcpy", ours, "memcpy of source", round([](Bed& picture) { Copy(picture); }), 15);
    }
  }
}

}  // namespace catalogcore
