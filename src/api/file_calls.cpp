// Loading and writing the two catalogue files.
#include "api/catalogue.h"
#include "persist/catalogue_records.h"

using namespace catalogcore;

namespace {

IDXSTATUS OnFile(IDXSTR name, IDXSTATUS (*call)(CIndexData&, const char*)) {
  return CatalogueCall(name, [&]() -> IDXSTATUS {
    CIDXString path;
    const IDXSTATUS status = GetCatalogueFilePath(name, path);
    return status == IDX_OK ? call(*idData, path.Text()) : status;
  });
}

}  // namespace

IDXSTATUS IDXLoadIndexFile(IDXSTR name) { return OnFile(name, LoadIndexRecords); }

IDXSTATUS IDXLoadImageFile(IDXSTR name) { return OnFile(name, LoadImageRecords); }

IDXSTATUS IDXWriteIndexFile(IDXSTR name) { return OnFile(name, WriteIndexRecords); }

IDXSTATUS IDXWriteImageFile(IDXSTR name) { return OnFile(name, WriteImageRecords); }
