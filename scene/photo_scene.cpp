// Whether a photograph shows faces.
#include "scene/detect_scene.h"
#include "scene/orlo.h"

namespace {

// Own what the face detector hands out, on every way out.
struct FaceContext : OrloContext {
  FaceContext() : OrloContext{} {}
  ~FaceContext() { OrloFree(memory); }
  FaceContext(const FaceContext&) = delete;
  FaceContext& operator=(const FaceContext&) = delete;
};

struct FaceList : OrloFaceList {
  FaceList() : OrloFaceList{} {}
  ~FaceList() { OrloFree(faces); }
  FaceList(const FaceList&) = delete;
  FaceList& operator=(const FaceList&) = delete;
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

  FaceContext context;
  Orlo_Initialize();
  std::int32_t failure =
      Orlo_SetBitmap(&context, image.bitsPerPixel, image.width, image.height, -image.rowBytes, image.pixels.get());
  if (failure != 0) return IDXERR_FACES + static_cast<IDXSTATUS>(failure);
  FaceList list;
  failure = Orlo_DetectFacePosition(&context, &list);
  if (failure != 0) return IDXERR_FACES + static_cast<IDXSTATUS>(failure);
  Orlo_Uninitialize();  // not after a failure, on purpose: the engine takes it unevenly
  return decide(list.count != 0 ? kPhotoFaces : kPhotoNoFaces);
}
