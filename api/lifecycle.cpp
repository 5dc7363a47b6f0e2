#include <new>

#include "api/catalogue.h"
#include "api/preset_index.h"
#include "api/store_status.h"
#include "base/string_conversion.h"
#include "scene/detect_scene.h"

CIndexData* idData = nullptr;
CIDXString g_strFilePath;

namespace {

IDXSTATUS Initialize() {
  idData = new (std::nothrow) CIndexData;
  if (!idData || !*idData->CriticalRegion()) return IDXUninitialize(), IDXERR_MEMORY;
  const std::uint32_t result = idData->Initialize();
  if (result != StoreOk) return StoreStatus(result);
  g_strFilePath.CopyString("");
  MakePresetIndex();  // the library works also without a preset that could not be made
  dsScene = new (std::nothrow) CDetectScene;
  return dsScene ? dsScene->Initialize() : static_cast<IDXSTATUS>(IDXERR_MEMORY);
}

}  // namespace

IDXSTATUS IDXInitialize(void) {
  IDXUninitialize();
  return WithoutExceptions(Initialize);
}

IDXSTATUS IDXUninitialize(void) {
  delete idData;
  idData = nullptr;
  delete dsScene;
  dsScene = nullptr;
  g_strFilePath.ClearString();
  return IDX_OK;
}

IDXSTATUS IDXSetFilePath(IDXSTR path) {
  if (!path) return IDXERR_PARAM;
  const auto status = static_cast<IDXSTATUS>(CopyIDXSTRtoCIDXString(g_strFilePath, path));
  if (status != IDX_OK) return status;
  return g_strFilePath.CatString("/") < 0 ? IDXERR_MEMORY : IDX_OK;
}
