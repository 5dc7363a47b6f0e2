#include "base/file_existence.h"

#include <limits.h>
#include <unistd.h>

#include "base/cf_reference.h"

int IsFileExistAPI(const char* path) {
  const CFReference<CFStringRef> text(CFStringCreateWithCString(kCFAllocatorDefault, path, kCFStringEncodingUTF8));
  if (!text) return 0;
  const CFReference<CFURLRef> url(
      CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text.get(), kCFURLPOSIXPathStyle, false));
  if (!url) return 0;
  char resolved[PATH_MAX];  // no system call takes a longer path
  if (!CFURLGetFileSystemRepresentation(url.get(), true, reinterpret_cast<UInt8*>(resolved), sizeof resolved)) return 0;
  return access(resolved, F_OK) == 0 ? 1 : 0;
}
