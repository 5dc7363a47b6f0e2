// A whole detection compared with the same steps elsewhere: copying the pixels, OpenCV's reduction and its look-up
// table. Empty engines replace the built-in ones, so this is a program of its own.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <vector>

#include "bench/support/ratios.h"
#include "catalogcore.h"
#include "scene/brenn.h"
#include "scene/orlo.h"
#include "scene/tone_curve.h"

// The unchanged result word means photograph. So the face detector, which gets a copy of all pixels, is called too.
std::int32_t DocumentTypeRecognize(std::int32_t, const char*, const unsigned char*, const void*, unsigned char*,
                                   std::uint32_t, const void*) {
  return 0;
}
std::int32_t Orlo_Initialize() { return 0; }
std::int32_t Orlo_SetBitmap(OrloContext*, std::int32_t, std::int32_t, std::int32_t, std::int32_t, const void*) {
  return 0;
}
std::int32_t Orlo_DetectFacePosition(OrloContext*, OrloFaceList*) { return 0; }
std::int32_t Orlo_Uninitialize() { return 0; }
void OrloFree(void*) {}

namespace catalogcore {

namespace {

constexpr int kSide = 4096;
constexpr int kResolution = 300;  // dots per inch: four times the recognizer's resolution

cv::Mat MakePicture() {
  cv::Mat picture(kSide, kSide, CV_8UC3);
  std::minstd_rand random(1);
  for (std::size_t i = 0; i < picture.total() * picture.elemSize(); ++i) {
    picture.data[i] = static_cast<std::uint8_t>(random() >> 8);
  }
  return picture;
}

void Detect(const cv::Mat& picture) {
  IDXDSDATA record{};
  record.pixels = picture.data;
  record.width = record.height = kSide;
  record.rowBytes = 3 * kSide;
  record.bitsPerPixel = 24;
  record.resolution = kResolution;
  if (IDXDetectScene(&record) != IDX_OK || record.presetIndex != IDXPRESET_PHOTO_OTHER) std::abort();
}

void CopyAndReduce(const cv::Mat& picture, const cv::Mat& curve) {
  const cv::Mat copy = picture.clone();
  cv::Mat reduced;
  cv::Mat curved;
  cv::resize(copy, reduced, {kSide / 4, kSide / 4}, 0, 0, cv::INTER_AREA);
  cv::LUT(reduced, curve, curved);
}

}  // namespace

}  // namespace catalogcore

using namespace catalogcore;

int main(int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') {
    std::fprintf(stderr, "usage: catalogcore_detect_bench RATIOS.json [--benchmark_filter=REGEX ...]\n");
    return 2;
  }
  cv::setNumThreads(1);
  if (IDXInitialize() != IDX_OK) return 1;
  const cv::Mat picture = MakePicture();
  cv::Mat curve(1, 256, CV_8U);
  std::memcpy(curve.data, ka1DLUT.data(), ka1DLUT.size());
  AddRow(
      "detect_4096", [&picture] { return Time(1, [&picture] { Detect(picture); }); }, "copy, OpenCV area, LUT",
      [&picture, &curve] { return Time(1, [&] { CopyAndReduce(picture, curve); }); }, 31);
  const char* const file = argv[1];
  argv[1] = argv[0];
  std::vector<Ratio> results;
  return RunRows(argc - 1, argv + 1, file, results);
}
