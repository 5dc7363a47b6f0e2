#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "engines/faces/face.h"
#include "scene/orlo.h"
#include "tests/engines/painted.h"
#include "tests/support/failing_allocator.h"

namespace catalogcore {

namespace {

using catalogcore::faces::FaceResult;
using catalogcore::tools::SourcePicture;

constexpr std::int32_t Code(FaceResult result) { return static_cast<std::int32_t>(result); }

// A picture of 512 x 384 units, which is the size of the copy that is searched, with two faces as face_networks.cpp
// describes them. One lies in the left half, upright; the other in the right half, turned by a quarter clockwise and
// twice as large. To the right of the upright one lies another darker spot, which moves it to the right.
double ToneOfFaces(double x, double y) {
  const auto isSpot = [&](double centreX, double centreY, double side) {
    return std::max(std::abs(x - centreX), std::abs(y - centreY)) < side / 2;
  };
  if (isSpot(80, 96, 10)) return 225;
  if (isSpot(400, 160, 20)) return 255;
  return isSpot(80, 80, 10) || isSpot(96, 96, 10) || isSpot(432, 160, 20) ? 180 : 110;
}

constexpr std::int32_t kWidth = 512;
constexpr std::int32_t kHeight = 384;

// `tint` is added to the first sample of a colour and subtracted from the third, which keeps the grey.
template <typename Tone>
SourcePicture Draw(std::int32_t bits, std::int32_t width, std::int32_t height, const Tone& tone, int tint = 0) {
  return Painted(width, height, bits, [&](std::int32_t x, std::int32_t y) {
    const double value = tone(x, y);
    return PaintedColour{value + tint, value, value - tint};
  });
}

std::int32_t Set(OrloContext& context, const SourcePicture& picture) {
  return Orlo_SetBitmap(&context, picture.bitsPerPixel, picture.width, picture.height, -picture.rowBytes,
                        picture.pixels.data());
}

std::vector<OrloFace> Faces(const SourcePicture& picture) {
  OrloContext context{};
  OrloFaceList list{};
  EXPECT_EQ(Set(context, picture), 0);
  EXPECT_EQ(Orlo_DetectFacePosition(&context, &list), 0);
  const auto* const faces = static_cast<const OrloFace*>(list.faces);
  std::vector<OrloFace> copy(faces, faces + list.count);
  OrloFree(list.faces);
  OrloFree(context.memory);
  for (const OrloFace& face : copy) {
    EXPECT_TRUE(0 <= face.left && face.left < face.right && face.right <= picture.width);
    EXPECT_TRUE(0 <= face.top && face.top < face.bottom && face.bottom <= picture.height);
  }
  return copy;
}

// `face` in units of 1 / `scale` pixel.
void ExpectFace(const OrloFace& face, double scale, const OrloFace& expected) {
  const double most = 2 + 1 / scale;
  EXPECT_NEAR(face.left / scale, expected.left, most);
  EXPECT_NEAR(face.top / scale, expected.top, most);
  EXPECT_NEAR(face.right / scale, expected.right, most);
  EXPECT_NEAR(face.bottom / scale, expected.bottom, most);
}

TEST(Orlo, FindsFacesOfEverySizeAndOrientation) {
  for (const double scale : {0.5, 1.0, 1.875, 4.0}) {
    const auto width = static_cast<std::int32_t>(kWidth * scale), height = static_cast<std::int32_t>(kHeight * scale);
    const std::vector<OrloFace> faces = Faces(Draw(24, width, height, [&](int x, int y) {
      double sum = 0;  // of 16 points of the pixel
      for (int i = 0; i < 16; ++i) sum += ToneOfFaces((x + (i % 4 + 0.5) / 4) / scale, (y + (i / 4 + 0.5) / 4) / scale);
      return sum / 16;
    }));
    ASSERT_EQ(faces.size(), 2U) << scale;
    // The brighter one first. Each is moved towards the darker spot, which is above an upright face and to the right
    // of a turned one.
    ExpectFace(faces[0], scale, {413 - 35, 160 - 26, 413 + 35, 160 + 26});
    ExpectFace(faces[1], scale, {87 - 13, 89 - 17, 87 + 13, 89 + 17});
  }
}

TEST(Orlo, FindsTheSameFacesInEveryDepthAndStride) {
  const std::vector<OrloFace> faces = Faces(Draw(8, kWidth, kHeight, ToneOfFaces));
  ASSERT_EQ(faces.size(), 2U);
  for (const std::int32_t bits : {8, 16, 24, 48}) {
    for (const int tint : {0, 30, -30}) {  // opposite tints exchange the first and the third sample
      EXPECT_EQ(Faces(Draw(bits, kWidth, kHeight, ToneOfFaces, tint)), faces) << bits << ' ' << tint;
    }
  }
}

TEST(Orlo, RefusesInvalidArguments) {
  const std::vector<std::uint8_t> bytes(60 * 60 * 3, 1);
  const std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
  const struct {
    std::int32_t bits, width, height, negatedStride;
    const void* pixels;
    FaceResult result;
  } cases[] = {
      {24, 60, 60, -180, nullptr, FaceResult::kNoPixels},
      {0, 60, 60, -180, bytes.data(), FaceResult::kBadDepth},
      {32, 60, 60, -240, bytes.data(), FaceResult::kBadDepth},
      {24, 49, 60, -180, bytes.data(), FaceResult::kBadSize},
      {24, lowest, lowest, -180, bytes.data(), FaceResult::kBadSize},
      {24, 60, 60, -179, bytes.data(), FaceResult::kBadStride},
      {24, 60, 60, lowest, bytes.data(), FaceResult::kBadStride},  // more than 2^31 - 1 bytes
      {24, 60, 60, -180, bytes.data(), FaceResult::kSuccess},
      {7, 60, 60, -180, bytes.data(), FaceResult::kBadDepth},  // removes the picture before it
  };
  OrloContext context{};
  OrloFaceList list{};
  for (const auto& c : cases) {
    EXPECT_EQ(Orlo_SetBitmap(&context, c.bits, c.width, c.height, c.negatedStride, c.pixels), Code(c.result));
    EXPECT_EQ(context.memory != nullptr, c.result == FaceResult::kSuccess);
    EXPECT_EQ(Orlo_DetectFacePosition(&context, &list), context.memory ? 0 : Code(FaceResult::kNoPicture));
  }
  EXPECT_EQ(Orlo_DetectFacePosition(&context, nullptr), Code(FaceResult::kNoFaceList));
  EXPECT_EQ(Orlo_DetectFacePosition(nullptr, &list), Code(FaceResult::kNoContext));
  EXPECT_EQ(Orlo_SetBitmap(nullptr, 24, 60, 60, -180, bytes.data()), Code(FaceResult::kNoContext));
}

TEST(Orlo, ReportsFailedAllocations) {
  const SourcePicture face = Draw(8, kWidth, kHeight, ToneOfFaces);
  OrloContext context{};
  OrloFaceList list{};
  // The second round replaces what the first allocated: a leak checker would report what is lost.
  for (int round = 0; round < 2; ++round) {
    {
      const FailingAllocation fails(0);
      EXPECT_EQ(Set(context, face), Code(FaceResult::kOutOfMemory));
    }
    EXPECT_EQ(context.memory, nullptr);
    EXPECT_EQ(Set(context, face), 0);
    {
      const FailingAllocation fails(0);
      EXPECT_EQ(Orlo_DetectFacePosition(&context, &list), Code(FaceResult::kOutOfMemory));
    }
    EXPECT_EQ(list.faces, nullptr);
    EXPECT_EQ(Orlo_DetectFacePosition(&context, &list), 0);
    EXPECT_EQ(list.count, 2U);
  }
  OrloFree(list.faces);
  OrloFree(context.memory);
}

TEST(Orlo, ClipsFacesToThePicture) {
  // Cut off at the right, so that the second face reaches beyond the border, and below, so that the first does.
  const std::vector<OrloFace> faces = Faces(Draw(8, 512, 103, [](int x, int y) { return ToneOfFaces(x - 72, y); }));
  ASSERT_EQ(faces.size(), 1U);
  EXPECT_EQ(faces[0].bottom, 103);
  for (const auto& [width, height] : {std::pair{50, 4096}, {4095, 61}}) Faces(Draw(48, width, height, ToneOfFaces));
}

}  // namespace

}  // namespace catalogcore
