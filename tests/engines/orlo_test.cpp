#include "scene/orlo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "engines/orlo/face.h"
#include "engines/orlo/grey_copy.h"
#include "engines/orlo/result_codes.h"
#include "engines/orlo/source_picture.h"
#include "tests/support/failing_allocator.h"

namespace {

using orlo::Result;

constexpr std::int32_t Code(Result result) { return static_cast<std::int32_t>(result); }

struct Picture {
  std::int32_t bits = 8;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t stride = 0;
  std::vector<std::uint8_t> bytes;
};

struct Ellipse {
  double tone, centreX, centreY, radiusX, radiusY;

  bool Covers(double x, double y) const { return std::hypot((x - centreX) / radiusX, (y - centreY) / radiusY) < 1; }
};

// In units of the head's breadth, about the middle of the face.
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

int ToneOfFace(std::int32_t x, std::int32_t y) {
  double tone = 90;
  for (const Ellipse& ellipse : kFace) {
    const double across = static_cast<double>(x - kFaceWidth / 2) / kHeadBreadth;
    const double down = static_cast<double>(y - kFaceHeight / 2) / kHeadBreadth;
    if (ellipse.Covers(across, down)) tone = ellipse.tone;
  }
  return static_cast<int>(tone);
}

int NoTone(std::int32_t, std::int32_t) { return 128; }

// `tint` is added to the first sample of a colour and taken from the third, so that their sum is the tone's.
template <typename Tone>
Picture Draw(std::int32_t bits, std::int32_t width, std::int32_t height, std::int32_t padding, const Tone& tone,
             int tint = 0) {
  const std::int32_t samples = bits > 16 ? 3 : 1;
  const std::int32_t sampleBytes = bits / 8 / samples;
  Picture picture{bits, width, height, width * (bits / 8) + padding, {}};
  picture.bytes.assign(static_cast<std::size_t>(picture.stride) * static_cast<std::size_t>(height), 0xA5);
  for (std::int32_t y = 0; y < height; ++y) {
    auto* byte = picture.bytes.data() + static_cast<std::ptrdiff_t>(y) * picture.stride;
    for (std::int32_t x = 0; x < width; ++x) {
      for (std::int32_t sample = 0; sample < samples; ++sample, byte += sampleBytes) {
        const int shift = samples == 1 ? 0 : tint * (1 - sample);
        const auto value = static_cast<std::uint8_t>(tone(x, y) + shift);
        if (sampleBytes == 1) {
          *byte = value;
        } else {
          const std::uint16_t wide = static_cast<std::uint16_t>(value << 8 | (x * 37 & 0xFF));
          std::copy_n(reinterpret_cast<const std::uint8_t*>(&wide), 2, byte);
        }
      }
    }
  }
  return picture;
}

std::int32_t Set(OrloContext& context, const Picture& picture) {
  return Orlo_SetBitmap(&context, picture.bits, picture.width, picture.height, -picture.stride, picture.bytes.data());
}

std::vector<OrloFace> Faces(const Picture& picture) {
  OrloContext context{};
  OrloFaceList list{};
  EXPECT_EQ(Set(context, picture), 0);
  EXPECT_EQ(Orlo_DetectFacePosition(&context, &list), 0);
  const auto* const faces = static_cast<const OrloFace*>(list.faces);
  std::vector<OrloFace> copy(faces, faces + list.count);
  OrloFree(list.faces);
  OrloFree(context.memory);
  return copy;
}

bool AreEqual(const std::vector<OrloFace>& a, const std::vector<OrloFace>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const OrloFace& left, const OrloFace& right) {
    return left.left == right.left && left.top == right.top && left.right == right.right && left.bottom == right.bottom;
  });
}

TEST(Orlo, FindsTheSameFaceInEveryDepthAndStride) {
  const std::vector<OrloFace> faces = Faces(Draw(8, kFaceWidth, kFaceHeight, 0, ToneOfFace));
  ASSERT_EQ(faces.size(), 1U);
  EXPECT_NEAR((faces[0].left + faces[0].right) / 2, kFaceWidth / 2, kHeadBreadth / 5);
  EXPECT_NEAR((faces[0].top + faces[0].bottom) / 2, kFaceHeight / 2, kHeadBreadth / 3);
  EXPECT_NEAR(faces[0].right - faces[0].left, kHeadBreadth, kHeadBreadth / 3);
  for (const std::int32_t bits : {8, 16, 24, 48}) {
    for (const int tint : {0, 30, -30}) {  // opposite tints exchange the first and the third sample
      EXPECT_TRUE(AreEqual(Faces(Draw(bits, kFaceWidth, kFaceHeight, 7, ToneOfFace, tint)), faces))
          << bits << " bits, tint " << tint;
    }
  }
}

TEST(Orlo, SaysWhatIsWrongWithAPicture) {
  const std::vector<std::uint8_t> pixels(60 * 60 * 3, 1);
  const std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
  const struct {
    std::int32_t bits, width, height, negatedStride;
    const void* pixels;
    Result result;
  } cases[] = {
      {24, 60, 60, -180, nullptr, Result::kNoPixels},
      {0, 60, 60, -180, pixels.data(), Result::kBadDepth},
      {-24, 60, 60, -180, pixels.data(), Result::kBadDepth},
      {32, 60, 60, -240, pixels.data(), Result::kBadDepth},
      {24, 49, 60, -180, pixels.data(), Result::kBadSize},
      {24, 60, 4097, -180, pixels.data(), Result::kBadSize},
      {24, -60, 60, -180, pixels.data(), Result::kBadSize},
      {24, lowest, lowest, -180, pixels.data(), Result::kBadSize},
      {24, 60, 60, -179, pixels.data(), Result::kBadStride},
      {24, 60, 60, 180, pixels.data(), Result::kBadStride},
      {24, 60, 60, lowest, pixels.data(), Result::kBadStride},  // more bytes than a picture can have
      {24, 60, 60, -180, pixels.data(), Result::kSuccess},
  };
  OrloContext context{};
  OrloFaceList list{};
  for (const auto& c : cases) {
    EXPECT_EQ(Orlo_SetBitmap(&context, c.bits, c.width, c.height, c.negatedStride, c.pixels), Code(c.result));
    EXPECT_EQ(context.memory != nullptr, c.result == Result::kSuccess);
    EXPECT_EQ(Orlo_DetectFacePosition(&context, &list),
              Code(c.result == Result::kSuccess ? Result::kSuccess : Result::kNoPicture));
  }
  EXPECT_EQ(Orlo_DetectFacePosition(&context, nullptr), Code(Result::kNoFaceList));
  EXPECT_EQ(Orlo_DetectFacePosition(nullptr, &list), Code(Result::kNoContext));
  EXPECT_EQ(Orlo_SetBitmap(nullptr, 24, 60, 60, -180, pixels.data()), Code(Result::kNoContext));
  // What a refused picture replaces is gone: no face of an older picture is ever reported for it.
  EXPECT_EQ(Orlo_SetBitmap(&context, 7, 60, 60, -180, pixels.data()), Code(Result::kBadDepth));
  EXPECT_EQ(context.memory, nullptr);
}

// The leak checker of the sanitized build watches what is set and listed twice here.
TEST(Orlo, MayBeInitialisedUnevenlyAndUsedAgain) {
  const Picture face = Draw(8, kFaceWidth, kFaceHeight, 0, ToneOfFace);
  OrloContext context{};
  OrloFaceList list{};
  for (const Picture& picture : {face, face, Draw(8, kFaceWidth, kFaceHeight, 0, NoTone)}) {
    EXPECT_EQ(Orlo_Initialize(), 0);
    EXPECT_EQ(Set(context, picture), 0);
    EXPECT_EQ(Orlo_DetectFacePosition(&context, &list), 0);
    EXPECT_EQ(list.faces != nullptr, list.count != 0);
  }
  EXPECT_EQ(list.count, 0U);
  OrloFree(context.memory);
}

TEST(Orlo, ReportsMemoryThatCannotBeHad) {
  const Picture face = Draw(8, kFaceWidth, kFaceHeight, 0, ToneOfFace);
  OrloContext context{};
  OrloFaceList list{};
  {
    const FailingAllocation fails(0);
    EXPECT_EQ(Set(context, face), Code(Result::kOutOfMemory));
  }
  EXPECT_EQ(context.memory, nullptr);
  EXPECT_EQ(Set(context, face), 0);
  {
    const FailingAllocation fails(0);
    EXPECT_EQ(Orlo_DetectFacePosition(&context, &list), Code(Result::kOutOfMemory));
    EXPECT_TRUE(fails.HasFailed());
  }
  EXPECT_EQ(list.faces, nullptr);
  EXPECT_EQ(list.count, 0U);
  OrloFree(context.memory);
}

TEST(Orlo, ScalesAndClipsFacesToThePicture) {
  constexpr int kScale = 14;
  constexpr int kCut = 22 * kScale;  // half a head lies over the left border
  const auto cutFace = [](std::int32_t x, std::int32_t y) { return ToneOfFace((x + kCut) / kScale, y / kScale); };
  const std::vector<OrloFace> faces = Faces(Draw(24, kFaceWidth * kScale - kCut, kFaceHeight * kScale, 1, cutFace));
  ASSERT_EQ(faces.size(), 1U);
  EXPECT_NEAR((faces[0].left + faces[0].right) / 2 + kCut, kFaceWidth * kScale / 2, kHeadBreadth * kScale / 5);
  EXPECT_NEAR(faces[0].right - faces[0].left, kHeadBreadth * kScale, kHeadBreadth * kScale / 3);
  for (const auto& [width, height] : {std::pair{50, 4096}, {4095, 61}}) Faces(Draw(48, width, height, 1, cutFace));
}

// The mean over the area that each target pixel covers, or the mix of the nearest two, in floating point.
double ReferenceTap(double sourceLength, double targetLength, double target, double source) {
  const double step = sourceLength / targetLength;
  if (step <= 1) {
    const double position = std::clamp((target + 0.5) * step - 0.5, 0.0, sourceLength - 1);
    return std::max(0.0, 1 - std::abs(position - source));
  }
  const double covered = std::min((target + 1) * step, source + 1) - std::max(target * step, source);
  return std::max(0.0, covered / step);
}

TEST(Orlo, GreyCopyIsTheMeanOfWhatItsPixelsCover) {
  const auto noise = [](std::int32_t x, std::int32_t y) { return 40 + (x * 7919 + y * 104729 + x * y) % 170; };
  const Picture picture = Draw(24, 71, 53, 3, noise, 25);
  orlo::SourcePicture source;
  ASSERT_EQ(orlo::DescribeSource(24, 71, 53, -picture.stride, picture.bytes.data(), source), Result::kSuccess);
  for (const orlo::PictureSize& size : {orlo::PictureSize{71, 53}, {20, 17}, {70, 52}, {150, 111}, {30, 80}}) {
    std::vector<std::uint8_t> grey(size.Area());
    orlo::MakeGreyCopy(source, size, grey.data());
    for (std::int32_t i = 0; i < size.width * size.height; ++i) {
      double mean = 0;
      for (std::int32_t y = 0; y < 53; ++y) {
        const double rowWeight = ReferenceTap(53, size.height, i / size.width, y);
        for (std::int32_t x = 0; rowWeight > 0 && x < 71; ++x) {
          mean += rowWeight * ReferenceTap(71, size.width, i % size.width, x) * noise(x, y);
        }
      }
      ASSERT_NEAR(grey[static_cast<std::size_t>(i)], mean, 1.5) << size.width << " x " << size.height << ", " << i;
    }
  }
}

}  // namespace
