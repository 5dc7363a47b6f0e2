#include "api/find.h"

#include <cstdlib>

namespace catalogcore {

OwnedHandle NewHandle() {
  OwnedHandle handle(static_cast<IDXFINDHANDLE*>(std::calloc(1, sizeof(IDXFINDHANDLE))));
  if (handle && !idData->Finds().Open(*handle)) handle.reset();
  return handle;
}

}  // namespace catalogcore

using namespace catalogcore;

IDXSTATUS IDXCloseFind(IDXFIND find) {
  if (find && idData) idData->Finds().Close(*find);
  std::free(find);
  return IDX_OK;
}
