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

struct Ellipse {
  double tone, centreX, centreY, radiusX, radiusY;

  bool Covers(double x, double y) const { return std::hypot((x - centreX) / radiusX, (y - centreY) / radiusY) < 1; }
};

// In units of the head's breadth, from the middle of the face.
constexpr Ellipse kFace[] = {
    {60, 0, -0.12, 0.52, 0.66},                                         // hair
    {190, 0, 0.05, 0.42, 0.55},                                         // skin
    {120, -0.19, -0.10, 0.13, 0.075}, {120, 0.19, -0.10, 0.13, 0.075},  // eyes
    {70, -0.19, -0.19, 0.13, 0.03},   {70, 0.19, -0.19, 0.13, 0.03},    // brows
    {215, 0, 0.05, 0.035, 0.13},                                        // bridge of the nose
    {60, 0, 0.33, 0.14, 0.02},                                          // mouth
};
constexpr std::int32_t kFaceWidth = 120;
constexpr std::int32_t kFaceHeight = 90;
constexpr std::int32_t kHeadBreadth = 45;

double ToneOfFace(std::int32_t x, std::int32_t y) {
  double tone = 90;
  for (const Ellipse& ellipse : kFace) {
    const double across = static_cast<double>(x - kFaceWidth / 2) / kHeadBreadth;
    const double down = static_cast<double>(y - kFaceHeight / 2) / kHeadBreadth;
    if (ellipse.Covers(across, down)) tone = ellipse.tone;
  }
  return tone;
}

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

TEST(Orlo, FindsTheSameFaceInEveryDepthAndStride) {
  const std::vector<OrloFace> faces = Faces(Draw(8, kFaceWidth, kFaceHeight, ToneOfFace));
  ASSERT_EQ(faces.size(), 1U);
  EXPECT_NEAR((faces[0].left + faces[0].right) / 2, kFaceWidth / 2, kHeadBreadth / 5);
  EXPECT_NEAR((faces[0].top + faces[0].bottom) / 2, kFaceHeight / 2, kHeadBreadth / 3);
  EXPECT_NEAR(faces[0].right - faces[0].left, kHeadBreadth, kHeadBreadth / 3);
  for (const std::int32_t bits : {8, 16, 24, 48}) {
    for (const int tint : {0, 30, -30}) {  // opposite tints exchange the first and the third sample
      EXPECT_EQ(Faces(Draw(bits, kFaceWidth, kFaceHeight, ToneOfFace, tint)), faces) << bits << ' ' << tint;
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
  const SourcePicture face = Draw(8, kFaceWidth, kFaceHeight, ToneOfFace);
  OrloContext context{};
  OrloFaceList list{};
  for (int round = 0; round < 2;
       ++round) {  // the second replaces what the first allocated: a leak checker would report it
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
    EXPECT_EQ(list.count, 1U);
  }
  OrloFree(list.faces);
  OrloFree(context.memory);
}

TEST(Orlo, ScalesAndClipsFacesToThePicture) {
  constexpr int kScale = 14;
  constexpr int kCut = 41 * kScale;  // the left border cuts a part of the head off
  const auto cutFace = [](std::int32_t x, std::int32_t y) { return ToneOfFace((x + kCut) / kScale, y / kScale); };
  const std::vector<OrloFace> faces = Faces(Draw(24, kFaceWidth * kScale - kCut, kFaceHeight * kScale, cutFace));
  ASSERT_EQ(faces.size(), 1U);
  EXPECT_NEAR((faces[0].left + faces[0].right) / 2 + kCut, kFaceWidth * kScale / 2, kHeadBreadth * kScale / 5);
  EXPECT_NEAR(faces[0].right - faces[0].left, kHeadBreadth * kScale, kHeadBreadth * kScale / 3);
  for (const auto& [width, height] : {std::pair{50, 4096}, {4095, 61}}) Faces(Draw(48, width, height, cutFace));
}

}  // namespace

}  // namespace catalogcore
