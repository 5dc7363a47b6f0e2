#include "api/catalogue.h"
#include "base/critical_region.h"
#include "scene/detect_scene.h"

using namespace catalogcore;

IDXSTATUS IDXDetectScene(IDXDSDATA* data) {
  if (!data) return IDXERR_PARAM;
  std::int32_t sceneClass = kClassUnknown;
  std::int32_t sceneValue = kValueUnknown;
  const IDXSTATUS status = WithoutExceptions([&]() -> IDXSTATUS {
    if (!dsScene) return IDXERR_FAILED;
    if (!*dsScene->Region()) return IDXERR_MEMORY;  // a detection needs its lock
    const RegionGuard region(dsScene->Region());
    return dsScene->DetectScene(data, sceneClass, sceneValue);
  });
  data->presetIndex = status == IDX_OK ? ConvertScenetoIndex(sceneClass, sceneValue) : -1;
  return status;
}
