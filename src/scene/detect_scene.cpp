#include "scene/detect_scene.h"

#include <algorithm>
#include <utility>

#include "scene/parameter_resource.h"

namespace catalogcore {

namespace {

constexpr std::int32_t kSmallestSide = 50;   // pixels; below, nothing can be told
constexpr std::int32_t kLargestSide = 4096;  // pixels

}  // namespace

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
  // Pixels that are not there, or cannot be, leave the hints and the sizes to decide by.
  if (image.SetImageBuffer(data->pixels) == IDXERR_MEMORY) return IDXERR_MEMORY;
  const IDXSTATUS status = DetectImageType(image, sceneClass);
  if (status != IDX_OK) return status;
  if (sceneClass == kClassDocument) return DetectDocumentSize(image, sceneValue);
  if (sceneClass == kClassPhoto) return DetectPhotoScene(image, sceneValue);
  return IDX_OK;
}

}  // namespace catalogcore
