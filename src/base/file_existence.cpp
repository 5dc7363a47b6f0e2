#include "base/file_existence.h"

#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

#include "base/owners.h"
#include "platform/corefoundation/utf8.h"

namespace catalogcore {

bool IsUtf8(const char* text) {
  std::string_view rest(text);
  if (std::all_of(rest.begin(), rest.end(), [](char c) { return (c & 0x80) == 0; })) return true;  // the usual case
  while (!rest.empty()) {
    const std::size_t bytes = catalogcore::cf::CharacterBytes(rest);
    if (bytes == 0) return false;
    rest.remove_prefix(bytes);
  }
  return true;
}

int IsFileExistAPI(const char* path) {
  // An absolute path needs no URL.
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

}  // namespace catalogcore
