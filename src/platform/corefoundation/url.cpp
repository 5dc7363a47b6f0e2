#include <CoreFoundation/CFURL.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/corefoundation/objects.h"

// Invariants: `path` is not empty and has no zero byte; `base` is empty if the path is absolute.
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

struct OpenFile {
  explicit OpenFile(int descriptor) : number(descriptor) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (number >= 0) close(number);
  }
  const int number;  // negative if the file could not be opened
};

int OpenToRead(const char* path) {
  for (;;) {
    const int file = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // opening a pipe must not block
    if (file >= 0 || errno != EINTR) return file;
  }
}

// Appends the content of the file. False if it cannot be read or is not a regular file. May throw std::bad_alloc.
bool ReadFile(const std::string& path, catalogcore::cf::ByteBuffer& bytes) {
  constexpr std::size_t kPiece = std::size_t{1} << 20;
  const OpenFile file(OpenToRead(path.c_str()));
  struct stat status {};
  if (file.number < 0 || fstat(file.number, &status) != 0 || !S_ISREG(status.st_mode)) return false;
  // One byte more than the size, so that read reports the end without another allocation. The file may grow meanwhile.
  std::size_t wanted = static_cast<std::size_t>(status.st_size) + 1;
  for (;; wanted = kPiece) {
    const std::size_t before = bytes.size();
    UInt8* const to = bytes.Extend(wanted);
    std::size_t filled = 0;
    while (filled < wanted) {
      const ssize_t count = read(file.number, to + filled, wanted - filled);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return false;
      if (count == 0) {
        bytes.Truncate(before + filled);
        return true;
      }
      filled += static_cast<std::size_t>(count);
    }
  }
}

CFDataRef CreateDataOfFile(CFURLRef url) {
  try {
    catalogcore::cf::ByteBuffer bytes;
    return ReadFile(url->base + url->path, bytes) ? catalogcore::cf::CreateData(std::move(bytes)) : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

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

Boolean CFURLCreateDataAndPropertiesFromResource(CFAllocatorRef, CFURLRef url, CFDataRef* data,
                                                 CFDictionaryRef* properties, CFArrayRef, SInt32* error) {
  const CFDataRef content = url && data ? CreateDataOfFile(url) : nullptr;
  if (data) *data = content;
  if (properties) *properties = nullptr;
  if (error) *error = content ? SInt32{0} : SInt32{kCFURLUnknownError};
  return content != nullptr;
}
