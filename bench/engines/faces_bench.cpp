// The engine on a photograph of twelve million pixels, compared with dlib's detector on a ready grey copy 1,280 pixels
// wide.
#include <dlib/image_processing/frontal_face_detector.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "bench/engines/engines_bench.h"
#include "bench/support/ratios.h"
#include "engines/faces/grey_copy.h"
#include "scene/orlo.h"

namespace catalogcore {

namespace {

constexpr std::int32_t kWidth = 4000;
constexpr std::int32_t kHeight = 3000;
constexpr std::int32_t kStride = kWidth * 3;

class Photograph {
 public:
  // Soft light, shapes of all sizes and grain. A dozen shapes resemble faces: enough for a second look, too little for
  // a decision without it. This is the most work that a search does.
  Photograph() : pixels_(static_cast<std::size_t>(kStride) * kHeight) {
    FillEllipse(kWidth / 2, kHeight / 2, kWidth, kHeight, {90, 110, 130});
    for (int shape = 0; shape < 1500; ++shape) {
      const std::int32_t radius = 12 + UpTo(30) * UpTo(12);
      FillEllipse(UpTo(kWidth), UpTo(kHeight), radius, radius / (1 + UpTo(3)), {UpTo(200), UpTo(200), UpTo(200)});
    }
    for (std::int32_t face = 0; face < 12; ++face) {
      const std::int32_t breadth = 300 + 40 * face, x = 500 + face % 4 * 1000, y = 500 + face / 4 * 1000;
      FillEllipse(x, y + breadth / 20, breadth * 42 / 100, breadth * 55 / 100, {190, 190, 190});
      FillEllipse(x, y + breadth / 3, breadth * 14 / 100, breadth * 3 / 100, {90, 90, 90});             // mouth
      FillEllipse(x + breadth / 5, y - breadth / 10, breadth / 8, breadth * 7 / 100, {120, 120, 120});  // one eye
    }
    for (std::uint8_t& sample : pixels_) sample = static_cast<std::uint8_t>(sample + UpTo(12));
  }

  const std::uint8_t* Pixels() const { return pixels_.data(); }

 private:
  std::int32_t UpTo(std::int32_t end) { return static_cast<std::int32_t>(random_() % static_cast<std::uint32_t>(end)); }

  // The brightness rises slightly from the top of the ellipse to its bottom.
  void FillEllipse(std::int32_t centreX, std::int32_t centreY, std::int32_t radiusX, std::int32_t radiusY,
                   const std::array<std::int32_t, 3>& tone) {
    for (std::int32_t y = std::max(0, centreY - radiusY); y < std::min(kHeight, centreY + radiusY); ++y) {
      const double down = static_cast<double>(y - centreY) / radiusY;
      const auto halfWidth = static_cast<std::int32_t>(radiusX * std::sqrt(1 - down * down));
      for (std::int32_t x = std::max(0, centreX - halfWidth); x < std::min(kWidth, centreX + halfWidth); ++x) {
        std::uint8_t* const pixel = pixels_.data() + std::ptrdiff_t{y} * kStride + std::ptrdiff_t{x} * 3;
        for (std::size_t sample = 0; sample < 3; ++sample) {
          pixel[sample] = static_cast<std::uint8_t>(tone[sample] + static_cast<std::int32_t>(20 * down) + 20);
        }
      }
    }
  }

  std::mt19937 random_{7};
  std::vector<std::uint8_t> pixels_;
};

void FindFaces(const Photograph& photograph) {
  OrloContext context{};
  OrloFaceList list{};
  if (Orlo_SetBitmap(&context, 24, kWidth, kHeight, -kStride, photograph.Pixels()) != 0) std::abort();
  if (Orlo_DetectFacePosition(&context, &list) != 0) std::abort();
  OrloFree(list.faces);
  OrloFree(context.memory);
}

dlib::array2d<unsigned char> ReadyCopy(const Photograph& photograph) {
  faces::FaceSource source;
  faces::DescribeSource(24, kWidth, kHeight, -kStride, photograph.Pixels(), source);
  dlib::array2d<unsigned char> grey(960, 1280);
  faces::MakeGreyCopy(source, MutablePixelView(&grey[0][0], 960, 1280));
  return grey;
}

}  // namespace

void AddFaceRows() {
  AddRow(
      "faces_4000x3000",
      [] {
        static const Photograph photograph;
        Orlo_Initialize();
        return Time(1, [] { FindFaces(photograph); });
      },
      "dlib, ready 1280",
      [] {
        static const dlib::array2d<unsigned char> grey = ReadyCopy(Photograph());
        static dlib::frontal_face_detector detector = dlib::get_frontal_face_detector();
        return Time(1, [] { detector(grey); });
      });
}

}  // namespace catalogcore
