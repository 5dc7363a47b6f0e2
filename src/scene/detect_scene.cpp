// The steps of a detection: sizes and hints, document or photograph, size of the document, faces in the photograph, and
// the number of the preset. Brenn (scene/brenn.h) is the recognizer and Orlo (scene/orlo.h) the face detector.
#include "scene/detect_scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <iterator>
#include <utility>

#include "scene/brenn.h"
#include "scene/image_record.h"
#include "scene/orlo.h"
#include "scene/parameter_resource.h"

namespace catalogcore {

CDetectScene::CDetectScene() { InitializeCriticalSectionAPI(&region); }

CDetectScene::~CDetectScene() { DeleteCriticalSectionAPI(&region); }

IDXSTATUS CDetectScene::Initialize() {
  Uninitialize();
  paramData.reset(OpenParamFile(&paramSize));
  return paramData ? IDX_OK : IDXERR_DETECTOR;
}

void CDetectScene::InitializeWith(ParameterBlock block, std::uint32_t size) {
  paramData = std::move(block);
  paramSize = size;
}

void CDetectScene::Uninitialize() { paramData.reset(); }

namespace {

constexpr std::int32_t kSmallestSide = 50;   // pixels; a smaller picture is a photograph without faces
constexpr std::int32_t kLargestSide = 4096;  // pixels

}  // namespace

IDXSTATUS CDetectScene::DetectScene(const IDXDSDATA* data, std::int32_t& sceneClass, std::int32_t& sceneValue) const {
  sceneClass = kClassUnknown;
  sceneValue = kValueUnknown;
  if (!data) return IDXERR_PARAM;
  CIDXImage image;
  image.SetImageData(data);
  if (image.fixedScene == 1) {
    sceneClass = kClassDocument;
    sceneValue = kDocumentFixed;
    return IDX_OK;
  }
  if (image.width > 0 && image.height > 0) {
    if (std::min(image.width, image.height) < kSmallestSide) {
      sceneClass = kClassPhoto;
      sceneValue = kPhotoSmall;
      return IDX_OK;
    }
    if (std::max(image.width, image.height) > kLargestSide) return IDXERR_IMAGESIZE;
  }
  // IDXERR_PARAM means that there are no pixels. This is no failure: the hints and the sizes may suffice.
  if (image.SetImageBuffer(data->pixels) == IDXERR_MEMORY) return IDXERR_MEMORY;
  const IDXSTATUS status = DetectImageType(image, sceneClass);
  if (status != IDX_OK) return status;
  if (sceneClass == kClassDocument) return DetectDocumentSize(image, sceneValue);
  if (sceneClass == kClassPhoto) return DetectPhotoScene(image, sceneValue);
  return IDX_OK;
}

// Document or photograph.

namespace {

// The name under which the library calls the recognizer: 16 characters, padded with blanks.
constexpr char kCaller[] = "CatalogCr       ";

// The class by the first hint that applies; kClassUnknown without a hint.
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
  // The bits of the result word that hold the kind, and the two kinds of documents (scene/brenn.h).
  constexpr std::uint16_t kKind = 0xF000;
  constexpr std::uint16_t kPrint = 0x1000;           // print or writing on paper
  constexpr std::uint16_t kColourDocument = 0x2000;  // a document with colour or pictures
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

// Which document: the paper of the closest size; without a resolution, the paper with the closest ratio of its sides.

namespace {

struct PaperSides {
  double shortSide, longSide;  // inches
};

// The position of a paper in this table is the scene value of documents of that size.
constexpr PaperSides PaperSize[] = {
    {2.16, 3.58},   // card, 55 x 91 mm
    {3.93, 5.82},   // postcard, 100 x 148 mm
    {4.0, 6.0},     // 4 x 6 in photo
    {5.82, 8.26},   // A5
    {7.16, 10.11},  // B5 (JIS)
    {8.26, 11.69},  // A4
    {8.5, 11.0},    // Letter
    {8.5, 14.0},    // Legal
};

// Long side over short side of the same papers. Some values differ from the quotients of the sizes above, which are
// truncated to two decimals.
constexpr double PaperRatio[] = {1.654, 1.48, 1.5, 1.419, 1.412, 1.415, 1.294, 1.647};
static_assert(std::size(PaperRatio) == std::size(PaperSize));

// A paper is excluded if the relative error of a side, or without a resolution the difference of the ratios, is not
// below this limit.
constexpr double kTolerance = 0.2;

// Returns the scene value of the paper with the smallest score. Of several papers with this score, the first in the
// table counts. A negative score excludes a paper. Returns kDocumentOther if every paper is excluded.
template <typename Score>
std::int32_t BestPaper(Score score) {
  double best = 200.0;
  std::int32_t value = kDocumentOther;
  for (std::size_t paper = 0; paper < std::size(PaperSize); ++paper) {
    const double found = score(paper);
    if (found < 0 || found >= best) continue;
    best = found;
    value = static_cast<std::int32_t>(paper);
  }
  return value;
}

}  // namespace

IDXSTATUS CDetectScene::DetectDocumentSize(const CIDXImage& image, std::int32_t& sceneValue) {
  constexpr double kNone = -1.0;
  sceneValue = kValueUnknown;
  if (image.width <= 0 || image.height <= 0) return IDX_OK;
  const double shortSide = std::min(image.width, image.height);
  const double longSide = std::max(image.width, image.height);
  const double resolution = image.resolution;
  if (resolution > 0.0) {
    sceneValue = BestPaper([&](std::size_t i) {
      const auto [paperShort, paperLong] = PaperSize[i];
      const double shortError = std::abs(paperShort - shortSide / resolution) / paperShort;
      const double longError = std::abs(paperLong - longSide / resolution) / paperLong;
      return shortError < kTolerance && longError < kTolerance ? shortError + longError : kNone;
    });
  } else {
    sceneValue = BestPaper([&](std::size_t i) {
      const double difference = std::abs(PaperRatio[i] - longSide / shortSide);
      return difference < kTolerance ? difference : kNone;
    });
  }
  return IDX_OK;
}

// Which photograph: with faces or without.

namespace {

// FaceContext and FaceList free what the face detector allocated, also after a failure.
struct FaceContext {
  FaceContext() = default;
  ~FaceContext() {
    if (context.memory) OrloFree(context.memory);
  }
  FaceContext(const FaceContext&) = delete;
  FaceContext& operator=(const FaceContext&) = delete;
  OrloContext context{};
};

struct FaceList {
  FaceList() = default;
  ~FaceList() {
    if (list.faces) OrloFree(list.faces);
  }
  FaceList(const FaceList&) = delete;
  FaceList& operator=(const FaceList&) = delete;
  OrloFaceList list{};
};

}  // namespace

IDXSTATUS CDetectScene::DetectPhotoScene(const CIDXImage& image, std::int32_t& sceneValue) {
  const auto decide = [&sceneValue](SceneValue value) {
    sceneValue = value;
    return IDX_OK;
  };
  if (image.photoKind == 1) return decide(kPhotoNoFaces);
  if (image.photoKind == 3) return decide(kPhotoOfKind3);
  if (!image.pixels) return decide(kValueUnknown);

  FaceContext face;
  Orlo_Initialize();
  // scene/orlo.h wants the stride with its sign reversed. The first row is the top row nevertheless.
  std::int32_t failure =
      Orlo_SetBitmap(&face.context, image.bitsPerPixel, image.width, image.height, -image.rowBytes, image.pixels.get());
  if (failure != 0) return IDXERR_FACES + static_cast<IDXSTATUS>(failure);
  FaceList found;
  failure = Orlo_DetectFacePosition(&face.context, &found.list);
  if (failure != 0) return IDXERR_FACES + static_cast<IDXSTATUS>(failure);
  Orlo_Uninitialize();  // not called after a failure; scene/orlo.h allows this
  return decide(found.list.count != 0 ? kPhotoFaces : kPhotoNoFaces);
}

namespace {

std::int32_t DocumentIndex(std::int32_t paper) {
  if (paper == 0) return IDXPRESET_DOCUMENT_CARD;
  if (paper == 1 || paper == 2) return IDXPRESET_DOCUMENT_POST;
  if (paper >= 3 && paper <= 7) return IDXPRESET_DOCUMENT_PAGE;
  return paper == kDocumentFixed ? IDXPRESET_DOCUMENT_FIXED : IDXPRESET_DOCUMENT_OTHER;
}

}  // namespace

std::int32_t ConvertScenetoIndex(std::int32_t sceneClass, std::int32_t sceneValue) {
  if (sceneValue == kValueUnknown) return -1;
  if (sceneClass == kClassDocument) return DocumentIndex(sceneValue);
  if (sceneClass == kClassPhoto) return sceneValue == kPhotoFaces ? IDXPRESET_PHOTO_FACES : IDXPRESET_PHOTO_OTHER;
  return -1;
}

}  // namespace catalogcore
