#include "scene/scene_index.h"

#include "scene/detect_scene.h"

namespace catalogcore {

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
