// Whether a photograph shows faces.
#include "scene/detect_scene.h"
#include "scene/orlo.h"

namespace catalogcore {

namespace {

// Own what the face detector hands out, on every way out.
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
  std::int32_t failure =
      Orlo_SetBitmap(&face.context, image.bitsPerPixel, image.width, image.height, -image.rowBytes, image.pixels.get());
  if (failure != 0) return IDXERR_FACES + static_cast<IDXSTATUS>(failure);
  FaceList found;
  failure = Orlo_DetectFacePosition(&face.context, &found.list);
  if (failure != 0) return IDXERR_FACES + static_cast<IDXSTATUS>(failure);
  Orlo_Uninitialize();  // not after a failure, on purpose: the engine takes it unevenly
  return decide(found.list.count != 0 ? kPhotoFaces : kPhotoNoFaces);
}

}  // namespace catalogcore
