#include "base/file_existence.h"

#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "base/cf_reference.h"

namespace {

// Whether the system call takes the path as it stands: whole from the root, and no text that might not be UTF-8.
bool IsPlain(const char* path) {
  const char* const end = path + std::strlen(path);
  return *path == '/' && std::all_of(path, end, [](char c) { return (c & 0x80) == 0; });
}

}  // namespace

int IsFileExistAPI(const char* path) {
  if (path && IsPlain(path)) return access(path, F_OK) == 0 ? 1 : 0;
  const CFReference<CFStringRef> text(CFStringCreateWithCString(kCFAllocatorDefault, path, kCFStringEncodingUTF8));
  if (!text) return 0;
  const CFReference<CFURLRef> url(
      CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text.get(), kCFURLPOSIXPathStyle, false));
  if (!url) return 0;
  char resolved[PATH_MAX];  // no system call takes a longer path
  if (!CFURLGetFileSystemRepresentation(url.get(), true, reinterpret_cast<UInt8*>(resolved), sizeof resolved)) return 0;
  return access(resolved, F_OK) == 0 ? 1 : 0;
}
