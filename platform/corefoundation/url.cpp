#include <CoreFoundation/CFURL.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/corefoundation/object.h"
#include "platform/corefoundation/string_object.h"

// Invariant: `path` is not empty and holds no zero byte; `base` is empty when the path is absolute.
struct __CFURL final : catalogcore::cf::Object {
  explicit __CFURL(std::string_view filePath)
      : Object(catalogcore::cf::Kind::kURL), path(filePath), base(BaseOf(filePath)) {}

  const std::string path;
  const std::string base;

 private:
  static std::string BaseOf(std::string_view filePath) {
    if (filePath.front() == '/') return {};
    std::error_code error;
    const std::filesystem::path current = std::filesystem::current_path(error);
    return error ? std::string() : current.string() + '/';
  }
};

namespace {

CFURLRef CreateURL(std::string_view path) {
  if (path.empty() || path.find('\0') != std::string_view::npos) return nullptr;
  return catalogcore::cf::Create<__CFURL>(path);
}

}  // namespace

CFTypeID CFURLGetTypeID() { return static_cast<CFTypeID>(catalogcore::cf::Kind::kURL); }

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle style, Boolean) {
  if (!path || style != kCFURLPOSIXPathStyle) return nullptr;
  return CreateURL(path->utf8);
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* path, CFIndex length, Boolean) {
  if (!path || length <= 0) return nullptr;
  return CreateURL({reinterpret_cast<const char*>(path), static_cast<std::size_t>(length)});
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
  if (style != kCFURLPOSIXPathStyle) return nullptr;
  std::string_view path = url->path;
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  return catalogcore::cf::CreateString(path);
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer, CFIndex capacity) {
  const std::string_view base = resolveAgainstBase ? std::string_view(url->base) : std::string_view();
  const std::size_t size = base.size() + url->path.size();
  if (!buffer || capacity < 0 || size >= static_cast<std::size_t>(capacity)) return false;
  if (!base.empty()) std::memcpy(buffer, base.data(), base.size());
  std::memcpy(buffer + base.size(), url->path.c_str(), url->path.size() + 1);
  return true;
}
