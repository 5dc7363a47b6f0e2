#include "api/catalogue.h"

#include <new>

#include "api/index_calls.h"
#include "base/string_conversion.h"
#include "scene/detect_scene.h"
#include "store/entries.h"

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
  MakePresetIndex();  // its result is ignored: the library works without presets too
  dsScene = new (std::nothrow) CDetectScene;
  return dsScene && *dsScene->Region() ? dsScene->Initialize() : static_cast<IDXSTATUS>(IDXERR_MEMORY);
}

}  // namespace

IDXSTATUS GetCatalogueFilePath(IDXSTR name, CIDXString& path) {
  CIDXString fileName;
  CopyIDXSTRtoCIDXString(fileName, name);
  const bool isMade = path.CopyString(g_strFilePath.Text()) >= 0 && path.CatString(fileName.Text()) >= 0;
  return isMade ? IDX_OK : IDXERR_MEMORY;
}

IDXSTATUS ConvertErrorCode(int code, int base) {
  constexpr int kReserved = 7;
  if (code == 0) return IDX_OK;
  if (base != kStoreCodeBase) return static_cast<IDXSTATUS>(code) + static_cast<IDXSTATUS>(base);
  switch (code) {
    case StoreFailed:
      return IDXERR_MEMORY;
    case StoreImageExists:
      return IDXERR_IMAGEEXISTS;
    case StoreImageNotFound:
      return IDXERR_NOIMAGE;
    case StoreIndexExists:
      return IDXERR_INDEXEXISTS;
    case StoreIndexNotFound:
      return IDXERR_NOINDEX;
    case StoreIndexHasChildren:
    case kReserved:
      return IDXERR_NOTEMPTY;
    case StoreInvalidKey:
      return IDXERR_PARAM;
    case StoreMoveProtected:
    case StoreRemoveProtected:
    case StoreRenameProtected:
      return IDXERR_PROTECTED;
    default:
      return IDXERR_FAILED;
  }
}

}  // namespace catalogcore

using namespace catalogcore;

IDXSTATUS IDXInitialize(void) {
  IDXUninitialize();
  const IDXSTATUS status = WithoutExceptions(Initialize);
  if (status != IDX_OK && status != IDXERR_DETECTOR) IDXUninitialize();
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
  // A path without its "/" would put the files beside the directory.
  if (status == IDXERR_MEMORY) g_strFilePath.ClearString();
  return status;
}
