// The scene detector: decides what a picture shows from the application's hints, its size, and what the document-type
// recognizer and the face detector say.
#ifndef CATALOGCORE_SCENE_DETECT_SCENE_H_
#define CATALOGCORE_SCENE_DETECT_SCENE_H_

#include <cstdint>

#include "base/critical_region.h"
#include "base/owners.h"
#include "catalogcore.h"
#include "scene/idx_image.h"

namespace catalogcore {

// What kind of picture it is.
enum SceneClass : std::int32_t {
  kClassUnknown = -1,
  kClassDocument = 1,
  kClassPhoto = 3,
};

// What is known beyond the class: for a document the index of its paper (document_size.cpp), or one of these.
enum SceneValue : std::int32_t {
  kValueUnknown = -1,
  kDocumentFixed = 10,  // the application said so
  kDocumentOther = 99,  // no paper is of its size
  kPhotoFaces = 1,
  kPhotoOfKind3 = 4,
  kPhotoNoFaces = 5,
  kPhotoSmall = 99,  // below 50 pixels on a side
};

// REQUIRES: DetectScene's caller holds Region; no other thread uses the detector while one of the rest runs.
class CDetectScene {
 public:
  CDetectScene();
  ~CDetectScene();
  CDetectScene(const CDetectScene&) = delete;
  CDetectScene& operator=(const CDetectScene&) = delete;

  // Reads the recognizer's parameter block, anew if there is one. IDX_OK; IDXERR_DETECTOR without a block, and then
  // detections that need the recognizer give it too.
  IDXSTATUS Initialize();

  using ParameterBlock = HeapBlock<unsigned char[]>;

  // Takes this parameter block of `size` bytes in place of the bundle's; for tools that measure blocks.
  void InitializeWith(ParameterBlock block, std::uint32_t size);

  // Gives the parameter block up.
  void Uninitialize();

  // Decides class and value; both are -1 where nothing is decided. Statuses are those of IDXDetectScene.
  IDXSTATUS DetectScene(const IDXDSDATA* data, std::int32_t& sceneClass, std::int32_t& sceneValue) const;

  MPCriticalRegionID* Region() { return &region; }

 private:
  IDXSTATUS DetectImageType(const CIDXImage& image, std::int32_t& sceneClass) const;
  IDXSTATUS Recognize(const CIDXImage& reduced, std::int32_t& sceneClass) const;
  static IDXSTATUS DetectPhotoScene(const CIDXImage& image, std::int32_t& sceneValue);
  static IDXSTATUS DetectDocumentSize(const CIDXImage& image, std::int32_t& sceneValue);

  std::uint32_t paramSize = 0;  // as the block's header has it; 0 without a block
  ParameterBlock paramData;
  MPCriticalRegionID region = nullptr;
};

// The detector, made when the library is initialised; null before and after.
extern CDetectScene* dsScene;

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_DETECT_SCENE_H_
