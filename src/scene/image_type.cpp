// Document or photograph: the application's hints first, then the recognizer.
#include <array>
#include <cstring>

#include "scene/brenn.h"
#include "scene/detect_scene.h"
#include "scene/image_record.h"

namespace catalogcore {

namespace {

constexpr char kCaller[] = "CatalogCr       ";  // 16 characters: 9 that count, padded with blanks

// The class that the hints of the record decide, the first that applies; kClassUnknown if none does.
SceneClass ClassByHints(const CIDXImage& image) {
  if (image.typeHint == 1) return kClassDocument;
  const bool isPhoto = image.typeHint == 2 || image.photoHint == 3 || (image.photoKind >= 1 && image.photoKind <= 3);
  return isPhoto ? kClassPhoto : kClassUnknown;
}

}  // namespace

IDXSTATUS CDetectScene::DetectImageType(const CIDXImage& image, std::int32_t& sceneClass) const {
  sceneClass = ClassByHints(image);
  if (sceneClass != kClassUnknown || !image.pixels) return IDX_OK;
  CIDXImage reduced(image);
  const IDXSTATUS status = reduced.SetImageBufferWithResolution(image.pixels.get(), kRecognizerResolution, 1);
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

}  // namespace catalogcore
