// The face detector on photographs of 0.3 and twelve million pixels, compared with dlib's detector on a ready grey copy
// 1,280 pixels wide.
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

class Photograph {
 public:
  // Soft light, shapes of all sizes and grain. A dozen shapes resemble faces, so that the check network has work.
  Photograph(std::int32_t width, std::int32_t height)
      : width_(width), height_(height), pixels_(static_cast<std::size_t>(Stride()) * static_cast<std::size_t>(height)) {
    FillEllipse(width / 2, height / 2, width, height, {90, 110, 130});
    for (int shape = 0; shape < 1500; ++shape) {
      const std::int32_t radius = std::max(2, (12 + UpTo(30) * UpTo(12)) * width / 4000);
      FillEllipse(UpTo(width), UpTo(height), radius, radius / (1 + UpTo(2)), {UpTo(200), UpTo(200), UpTo(200)});
    }
    for (std::int32_t face = 0; face < 12; ++face) {
      const std::int32_t breadth = (300 + 40 * face) * width / 4000;
      const std::int32_t x = (500 + face % 4 * 1000) * width / 4000, y = (500 + face / 4 * 1000) * width / 4000;
      FillEllipse(x, y + breadth / 20, breadth * 42 / 100, breadth * 55 / 100, {190, 190, 190});
      FillEllipse(x, y + breadth / 3, breadth * 14 / 100, breadth * 3 / 100, {90, 90, 90});             // mouth
      FillEllipse(x + breadth / 5, y - breadth / 10, breadth / 8, breadth * 7 / 100, {120, 120, 120});  // one eye
    }
    for (std::uint8_t& sample : pixels_) sample = static_cast<std::uint8_t>(sample + UpTo(12));
  }

  std::int32_t Width() const { return width_; }
  std::int32_t Height() const { return height_; }
  std::int32_t Stride() const { return width_ * 3; }
  const std::uint8_t* Pixels() const { return pixels_.data(); }

 private:
  std::int32_t UpTo(std::int32_t end) { return static_cast<std::int32_t>(random_() % static_cast<std::uint32_t>(end)); }

  // The brightness rises slightly from the top of the ellipse to its bottom.
  void FillEllipse(std::int32_t centreX, std::int32_t centreY, std::int32_t radiusX, std::int32_t radiusY,
                   const std::array<std::int32_t, 3>& tone) {
    for (std::int32_t y = std::max(0, centreY - radiusY); y < std::min(height_, centreY + radiusY); ++y) {
      const double down = static_cast<double>(y - centreY) / radiusY;
      const auto halfWidth = static_cast<std::int32_t>(radiusX * std::sqrt(1 - down * down));
      for (std::int32_t x = std::max(0, centreX - halfWidth); x < std::min(width_, centreX + halfWidth); ++x) {
        std::uint8_t* const pixel = pixels_.data() + std::ptrdiff_t{y} * Stride() + std::ptrdiff_t{x} * 3;
        for (std::size_t sample = 0; sample < 3; ++sample) {
          pixel[sample] = static_cast<std::uint8_t>(tone[sample] + static_cast<std::int32_t>(20 * down) + 20);
        }
      }
    }
  }

  std::mt19937 random_{7};
  std::int32_t width_, height_;
  std::vector<std::uint8_t> pixels_;
};

void FindFaces(const Photograph& photograph) {
  OrloContext context{};
  OrloFaceList list{};
  if (Orlo_SetBitmap(&context, 24, photograph.Width(), photograph.Height(), -photograph.Stride(),
                     photograph.Pixels()) != 0) {
    std::abort();
  }
  if (Orlo_DetectFacePosition(&context, &list) != 0) std::abort();
  OrloFree(list.faces);
  OrloFree(context.memory);
}

dlib::array2d<unsigned char> ReadyCopy(const Photograph& photograph) {
  faces::FaceSource source;
  faces::DescribeSource(24, photograph.Width(), photograph.Height(), -photograph.Stride(), photograph.Pixels(), source);
  dlib::array2d<unsigned char> grey(960, 1280);
  faces::MakeGreyCopy(source, MutablePixelView(&grey[0][0], 960, 1280));
  return grey;
}

template <std::int32_t kWidth, std::int32_t kHeight>
void AddFaceRow(const char* name) {
  static const auto photograph = []() -> const Photograph& {
    static const Photograph made(kWidth, kHeight);
    return made;
  };
  AddRow(
      name,
      [] {
        Orlo_Initialize();
        const Photograph& picture = photograph();
        return ThreadTime(1, [&picture] { FindFaces(picture); });
      },
      "dlib, ready 1280",
      [] {
        static const dlib::array2d<unsigned char> grey = ReadyCopy(photograph());
        static dlib::frontal_face_detector detector = dlib::get_frontal_face_detector();
        return ThreadTime(1, [] { detector(grey); });
      });
}

}  // namespace

void AddFaceRows() {
  AddFaceRow<640, 480>("faces_640x480");
  AddFaceRow<4000, 3000>("faces_4000x3000");
}

}  // namespace catalogcore
