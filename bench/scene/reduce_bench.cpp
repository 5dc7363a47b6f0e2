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

// A picture, memory for its copy, and the tone curve.
struct PicturePair {
  explicit PicturePair(int bits)
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

void Reduce(const PicturePair& pair, int factor) {
  IDXDSDATA record{};
  record.width = record.height = kSide;
  record.bitsPerPixel = 8 * pair.bytesPerPixel;
  record.rowBytes = kSide * pair.bytesPerPixel;
  record.resolution = kTarget * factor;
  CIDXImage image;
  image.SetImageData(&record);
  if (image.SetImageBufferWithResolution(pair.source.data, kTarget, 1) != IDX_OK) std::abort();
}

// Allocates its results, as a detection does.
void ReduceWithOpenCv(const PicturePair& pair, int factor) {
  cv::Mat reduced;
  cv::Mat curved;
  cv::resize(pair.source, reduced, {kSide / factor, kSide / factor}, 0, 0, cv::INTER_AREA);
  cv::LUT(reduced, pair.curve, curved);
}

void Copy(PicturePair& pair) { std::memcpy(pair.copy.data, pair.source.data, pair.Size()); }

}  // namespace

void AddReduceRows() {
  cv::setNumThreads(1);
  for (const int bits : {8, 24}) {
    for (const int factor : {2, 4, 8}) {
      const auto pair =
          std::make_shared<std::unique_ptr<PicturePair>>();  // made on first use, which a filter may prevent
      const auto round = [pair, bits](auto work) -> Round {
        return [pair, bits, work] {
          if (!*pair) *pair = std::make_unique<PicturePair>(bits);
          return Time(1, [&] { work(**pair); });
        };
      };
      const std::string name = "reduce_" + std::to_string(factor) + "_" + std::to_string(bits);
      const Round ours = round([factor](const PicturePair& picture) { Reduce(picture, factor); });
      AddRow(name, ours, "OpenCV area, LUT",
             round([factor](const PicturePair& picture) { ReduceWithOpenCv(picture, factor); }), 15);
      AddRow(name + "_memcpy", ours, "memcpy of source", round([](PicturePair& picture) { Copy(picture); }), 15);
    }
  }
}

}  // namespace catalogcore
