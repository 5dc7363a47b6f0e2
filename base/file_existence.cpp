#include "base/file_existence.h"

#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "base/cf_reference.h"

bool IsUtf8(const char* text) {
  const bool isAscii = std::all_of(text, text + std::strlen(text), [](char c) { return (c & 0x80) == 0; });
  return isAscii || CFReference<CFStringRef>(CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8));
}

int IsFileExistAPI(const char* path) {
  // From the root on, the system takes the path as it stands.
  if (path && *path == '/') return IsUtf8(path) && access(path, F_OK) == 0 ? 1 : 0;
  const CFReference<CFStringRef> text(CFStringCreateWithCString(kCFAllocatorDefault, path, kCFStringEncodingUTF8));
  if (!text) return 0;
  const CFReference<CFURLRef> url(
      CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text.get(), kCFURLPOSIXPathStyle, false));
  if (!url) return 0;
  char resolved[PATH_MAX];  // no system call takes a longer path
  if (!CFURLGetFileSystemRepresentation(url.get(), true, reinterpret_cast<UInt8*>(resolved), sizeof resolved)) return 0;
  return access(resolved, F_OK) == 0 ? 1 : 0;
}
