// Document or photograph: the application's hints first, then the recognizer.
#include <algorithm>
#include <array>
#include <cstring>

#include "scene/brenn.h"
#include "scene/detect_scene.h"

namespace {

constexpr int kTargetResolution = 75;       // dots per inch that the recognizer is made for
constexpr std::int32_t kSmallestArea = 50;  // pixels on a side of the area that it looks at
constexpr double kMarginMillimetres = 5.0;  // along the edges, where scanners show their bed
constexpr double kMillimetresPerInch = 25.4;
constexpr char kCaller[] = "CatalogCr       ";  // 16 characters: 9 that count, padded with blanks

// The class that the hints of the record decide, the first that applies; kClassUnknown if none does.
SceneClass ClassByHints(const CIDXImage& image) {
  if (image.typeHint == 1) return kClassDocument;
  const bool isPhoto = image.typeHint == 2 || image.photoHint == 3 || (image.photoKind >= 1 && image.photoKind <= 3);
  return isPhoto ? kClassPhoto : kClassUnknown;
}

// The margin on both sides of `length` pixels: none where too little would be left between them.
std::int32_t Margin(std::int32_t length, std::int32_t margin) {
  const std::int64_t left = length - std::int64_t{2} * margin;
  return left > 0 && left >= kSmallestArea ? margin : 0;
}

class ImageRecord {
 public:
  explicit ImageRecord(const CIDXImage& reduced) {
    const std::int32_t bits = reduced.bitsPerPixel;
    const std::int32_t resolution = std::max(reduced.resolution, kTargetResolution);
    const auto margin = static_cast<std::int32_t>(resolution * kMarginMillimetres / kMillimetresPerInch);
    const std::int32_t marginX = Margin(reduced.width, margin);
    const std::int32_t marginY = Margin(reduced.height, margin);
    Put<std::uint16_t>(kBrennTag, kBrennRecordTag);
    if (bits == 8 || bits == 16 || bits == 24 || bits == 48) {
      const std::int32_t samples = bits == 8 || bits == 16 ? 1 : 3;
      Put<std::uint16_t>(kBrennSamplesPerPixel, samples);
      Put<std::uint16_t>(kBrennBitsPerSample, bits / samples);
    }
    Put<std::uint16_t>(kBrennFixedTwo, 2);
    Put<std::uint16_t>(kBrennFixedOne, 1);
    Put<std::uint32_t>(kBrennWidth, reduced.width);
    Put<std::uint32_t>(kBrennStride, reduced.rowBytes);
    Put<std::uint32_t>(kBrennHeight, reduced.height);
    Put<std::uint32_t>(kBrennResolutionX, resolution);
    Put<std::uint32_t>(kBrennResolutionY, resolution);
    Put<std::uint32_t>(kBrennMarginX, marginX);
    Put<std::uint32_t>(kBrennMarginY, marginY);
    Put<std::uint32_t>(kBrennAreaWidth, reduced.width - 2 * marginX);
    Put<std::uint32_t>(kBrennAreaHeight, reduced.height - 2 * marginY);
    Put<std::uint16_t>(kBrennFixedSixteenX, 16);
    Put<std::uint16_t>(kBrennFixedSixteenY, 16);
  }

  const unsigned char* Bytes() const { return bytes_.data(); }

 private:
  template <typename Field>
  void Put(BrennRecordOffset offset, std::int32_t value) {
    const auto field = static_cast<Field>(value);
    std::memcpy(&bytes_[offset], &field, sizeof field);
  }

  std::array<unsigned char, kBrennRecordSize> bytes_{};
};

}  // namespace

IDXSTATUS CDetectScene::DetectImageType(const CIDXImage& image, std::int32_t& sceneClass) const {
  sceneClass = ClassByHints(image);
  if (sceneClass != kClassUnknown || !image.pixels) return IDX_OK;
  CIDXImage reduced(image);
  const IDXSTATUS status = reduced.SetImageBufferWithResolution(image.pixels.get(), kTargetResolution, 1);
  return status == IDX_OK ? Recognize(reduced, sceneClass) : status;
}

IDXSTATUS CDetectScene::Recognize(const CIDXImage& reduced, std::int32_t& sceneClass) const {
  constexpr std::uint16_t kKind = 0xF000;
  constexpr std::uint16_t kPrint = 0x1000;
  constexpr std::uint16_t kColourDocument = 0x2000;
  if (paramSize == 0 || !paramData) return IDXERR_DETECTOR;
  const ImageRecord record(reduced);
  std::array<unsigned char, kBrennResultSize> result{};
  const std::int32_t failure = DocumentTypeRecognize(0, kCaller, record.Bytes(), reduced.pixels.get(), result.data(),
                                                     paramSize, paramData.get());
  if (failure != 0) return IDXERR_RECOGNIZER + static_cast<IDXSTATUS>(failure);
  std::uint16_t word = 0;
  std::memcpy(&word, result.data(), sizeof word);
  const int kind = word & kKind;
  sceneClass = kind == kPrint || kind == kColourDocument ? kClassDocument : kClassPhoto;
  return IDX_OK;
}
