// The scene detector: decides what a picture shows from the application's hints, the picture's size, the document-type
// recognizer and the face detector.
#ifndef CATALOGCORE_SCENE_DETECT_SCENE_H_
#define CATALOGCORE_SCENE_DETECT_SCENE_H_

#include <cstdint>

#include "base/critical_region.h"
#include "base/owners.h"
#include "catalogcore.h"
#include "scene/idx_image.h"

namespace catalogcore {

enum SceneClass : std::int32_t {
  kClassUnknown = -1,
  kClassDocument = 1,
  kClassPhoto = 3,
};

// The refinement of the class. For a document this is the index of its paper (PaperSize in detect_scene.cpp), or one of
// these values.
enum SceneValue : std::int32_t {
  kValueUnknown = -1,
  kDocumentFixed = 10,  // by the hint fixedScene
  kDocumentOther = 99,  // no paper matches
  kPhotoFaces = 1,
  kPhotoOfKind3 = 4,
  kPhotoNoFaces = 5,
  kPhotoSmall = 99,  // below 50 pixels on a side
};

// REQUIRES: the caller of DetectScene holds Region; no other operation runs while another thread uses the detector.
class CDetectScene {
 public:
  CDetectScene();
  ~CDetectScene();
  CDetectScene(const CDetectScene&) = delete;
  CDetectScene& operator=(const CDetectScene&) = delete;

  // Reads the recognizer's parameter block and replaces the previous block. Returns IDX_OK, or IDXERR_DETECTOR if the
  // block is missing; detections that need the recognizer then return IDXERR_DETECTOR too.
  IDXSTATUS Initialize();

  using ParameterBlock = HeapBlock<unsigned char[]>;

  // Uses this parameter block of `size` bytes instead of the bundle's; for tools that measure blocks.
  void InitializeWith(ParameterBlock block, std::uint32_t size);

  // Frees the parameter block.
  void Uninitialize();

  // Decides class and value; each is -1 if undetermined. Returns the statuses of IDXDetectScene.
  IDXSTATUS DetectScene(const IDXDSDATA* data, std::int32_t& sceneClass, std::int32_t& sceneValue) const;

  MPCriticalRegionID* Region() { return &region; }

 private:
  IDXSTATUS DetectImageType(const CIDXImage& image, std::int32_t& sceneClass) const;
  IDXSTATUS Recognize(const CIDXImage& reduced, std::int32_t& sceneClass) const;
  static IDXSTATUS DetectPhotoScene(const CIDXImage& image, std::int32_t& sceneValue);
  static IDXSTATUS DetectDocumentSize(const CIDXImage& image, std::int32_t& sceneValue);

  std::uint32_t paramSize = 0;  // from the header of the block; 0 before the first block
  ParameterBlock paramData;
  MPCriticalRegionID region = nullptr;
};

// The number of the preset index for a scene; -1 for an undetermined scene.
std::int32_t ConvertScenetoIndex(std::int32_t sceneClass, std::int32_t sceneValue);

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_DETECT_SCENE_H_
