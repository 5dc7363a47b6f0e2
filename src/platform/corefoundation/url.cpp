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

#include "platform/corefoundation/byte_buffer.h"
#include "platform/corefoundation/data_object.h"
#include "platform/corefoundation/objects.h"
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

class FileDescriptor {
 public:
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (number_ >= 0) close(number_);
  }
  int number() const { return number_; }

 private:
  const int number_;
};

SInt32 ErrorOfOpen(int systemError) {
  switch (systemError) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
      return kCFURLResourceNotFoundError;
    case EACCES:
    case EPERM:
      return kCFURLResourceAccessViolationError;
    default:
      return kCFURLUnknownError;
  }
}

int OpenToRead(const char* path) {
  for (;;) {
    const int file = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // a pipe must not be waited for
    if (file >= 0 || errno != EINTR) return file;
  }
}

// Appends the file, to its end. Returns 0 or a kCFURL error; throws std::bad_alloc.
SInt32 ReadFile(const std::string& path, catalogcore::cf::ByteBuffer& bytes) {
  constexpr std::size_t kPiece = std::size_t{1} << 20;
  const FileDescriptor file(OpenToRead(path.c_str()));
  if (file.number() < 0) return ErrorOfOpen(errno);
  struct stat status {};
  if (fstat(file.number(), &status) != 0) return kCFURLUnknownError;
  if (!S_ISREG(status.st_mode)) return kCFURLResourceAccessViolationError;
  // One byte more than the size, so that the end is met without growing; files that grow meanwhile are read on.
  std::size_t wanted = static_cast<std::size_t>(status.st_size) + 1;
  for (;; wanted = kPiece) {
    const std::size_t before = bytes.size();
    UInt8* const to = bytes.Extend(wanted);
    std::size_t filled = 0;
    while (filled < wanted) {
      const ssize_t count = read(file.number(), to + filled, wanted - filled);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return kCFURLUnknownError;
      if (count == 0) {
        bytes.Truncate(before + filled);
        return 0;
      }
      filled += static_cast<std::size_t>(count);
    }
  }
}

SInt32 CreateDataOfFile(CFURLRef url, CFDataRef& data) {
  try {
    catalogcore::cf::ByteBuffer bytes;
    const SInt32 error = ReadFile(url->base + url->path, bytes);
    if (error != 0) return error;
    data = catalogcore::cf::CreateData(std::move(bytes));
    return data ? 0 : kCFURLUnknownError;
  } catch (const std::bad_alloc&) {
    return kCFURLUnknownError;
  }
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

Boolean CFURLCreateDataAndPropertiesFromResource(CFAllocatorRef, CFURLRef url, CFDataRef* data,
                                                 CFDictionaryRef* properties, CFArrayRef, SInt32* error) {
  if (data) *data = nullptr;
  if (properties) *properties = nullptr;
  const SInt32 result = url && data ? CreateDataOfFile(url, *data) : SInt32{kCFURLImproperArgumentsError};
  if (error) *error = result;
  return result == 0;
}
