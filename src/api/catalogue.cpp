#include "api/catalogue.h"

#include <new>

#include "api/index_calls.h"
#include "api/store_status.h"
#include "base/string_conversion.h"
#include "scene/detect_scene.h"

namespace catalogcore {

CIndexData* idData = nullptr;
CDetectScene* dsScene = nullptr;
CIDXString g_strFilePath;

namespace {

IDXSTATUS Initialize() {
  idData = new (std::nothrow) CIndexData;
  if (!idData || !*idData->CriticalRegion()) return IDXERR_MEMORY;
  const std::uint32_t result = idData->Initialize();
  if (result != StoreOk) return StoreStatus(result);
  g_strFilePath.CopyString("");
  MakePresetIndex();  // the library works also without a preset that could not be made
  dsScene = new (std::nothrow) CDetectScene;
  return dsScene && *dsScene->Region() ? dsScene->Initialize() : static_cast<IDXSTATUS>(IDXERR_MEMORY);
}

}  // namespace

}  // namespace catalogcore

using namespace catalogcore;

IDXSTATUS IDXInitialize(void) {
  IDXUninitialize();
  const IDXSTATUS status = WithoutExceptions(Initialize);
  if (status == IDXERR_MEMORY) IDXUninitialize();
  return status;
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
  auto status = static_cast<IDXSTATUS>(CopyIDXSTRtoCIDXString(g_strFilePath, path));
  if (status == IDX_OK && g_strFilePath.CatString("/") < 0) status = IDXERR_MEMORY;
  // Neither the earlier directory nor a path without its "/", which would put the files beside the directory.
  if (status == IDXERR_MEMORY) g_strFilePath.ClearString();
  return status;
}
