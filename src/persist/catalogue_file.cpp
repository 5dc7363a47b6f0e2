#include <cstdlib>
#include <cstring>

#include "api/catalogue.h"
#include "base/string_conversion.h"
#include "persist/catalogue_records.h"
#include "persist/property_file.h"
#include "persist/property_value.h"

namespace catalogcore {

namespace {

constexpr int kPayloadBlockSize = 1024;

// The file of that name below the base directory. IDXERR_PARAM, IDXERR_FAILED or IDXERR_MEMORY.
IDXSTATUS MakeURL(IDXSTR name, CFReference<CFURLRef>& url) {
  if (!name) return IDXERR_PARAM;
  CIDXString fileName;
  CopyIDXSTRtoCIDXString(fileName, name);  // one that cannot be used leaves the directory, which is no catalogue file
  CIDXString path;
  if (path.CopyString(g_strFilePath.Text()) < 0 || path.CatString(fileName.Text()) < 0) return IDXERR_MEMORY;
  const CFReference<CFStringRef> text(CFStringCreateWithCString(nullptr, path.Text(), kCFStringEncodingUTF8));
  if (!text) return IDXERR_FAILED;
  url.reset(CFURLCreateWithFileSystemPath(nullptr, text.get(), kCFURLPOSIXPathStyle, false));
  return url ? IDX_OK : IDXERR_FAILED;
}

IDXSTATUS LoadBuffer(IDXSTR name, CFStringRef key, char*& buffer) {
  CFReference<CFDataRef> payload;
  const IDXSTATUS status = LoadPayload(name, key, payload);
  if (status != IDX_OK) return status;
  const std::string_view text = TextOf(payload.get());
  buffer = static_cast<char*>(std::malloc(text.size() + 1));
  if (!buffer) return IDXERR_MEMORY;
  std::memcpy(buffer, text.data(), text.size());
  buffer[text.size()] = 0;
  return IDX_OK;
}

char* LoadBuffer(IDXSTR name, CFStringRef key, std::int32_t* status) {
  char* payload = nullptr;
  const IDXSTATUS result = LoadBuffer(name, key, payload);
  if (status) *status = static_cast<std::int32_t>(result);
  return payload;
}

}  // namespace

IDXSTATUS LoadPayload(IDXSTR name, CFStringRef key, CFReference<CFDataRef>& payload) {
  CFReference<CFURLRef> url;
  const IDXSTATUS status = MakeURL(name, url);
  if (status != IDX_OK) return status;
  if (!ReadPropertyValue(url.get(), key, payload)) return IDXERR_FAILED;
  return payload && CFDataGetLength(payload.get()) > 0 ? IDX_OK : IDXERR_NODATA;
}

char* LoadIndexBuffer(IDXSTR name, std::int32_t* status) { return LoadBuffer(name, CATALOGCORE_INDEX_KEY, status); }

char* LoadImageBuffer(IDXSTR name, std::int32_t* status) { return LoadBuffer(name, CATALOGCORE_IMAGE_KEY, status); }

IDXSTATUS WriteCatalogueFile(IDXSTR name, CFStringRef key, IDXSTATUS (*fill)(CIDXBuffer&)) {
  CFReference<CFURLRef> url;
  IDXSTATUS status = MakeURL(name, url);
  if (status != IDX_OK) return status;
  CIDXBuffer payload(kPayloadBlockSize);
  status = fill(payload);
  if (status != IDX_OK) return status;
  return _WriteKeyData(url.get(), key, payload) == 1 ? IDX_OK : IDXERR_FAILED;
}

}  // namespace catalogcore
