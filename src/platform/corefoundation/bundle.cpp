#include <CoreFoundation/CFBundle.h>
#include <dlfcn.h>

#include <filesystem>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <system_error>

#include "platform/corefoundation/objects.h"

namespace fs = std::filesystem;

struct __CFBundle final : catalogcore::cf::Object {
  explicit __CFBundle(fs::path folder)
      : Object(catalogcore::cf::Kind::kBundle, catalogcore::cf::Lifetime::kForever), path(std::move(folder)) {}
  const fs::path path;
};

namespace {

// Relative to the loaded library, so that an installation can be moved. Empty if the path of the library is unknown.
fs::path FindDataFolder() {
  Dl_info library{};
  if (!dladdr(reinterpret_cast<const void*>(&CFBundleGetBundleWithIdentifier), &library)) return {};
  std::error_code error;
  const fs::path file = fs::absolute(library.dli_fname, error);
  return error ? fs::path() : file.parent_path() / CATALOGCORE_DATA_FROM_LIBRARY;
}

bool IsFolderName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

CFBundleRef FindBundle(const std::string& identifier) {
  static std::mutex mutex;
  static auto& bundles = *new std::map<std::string, CFBundleRef>;  // never destroyed, like the bundles
  static const fs::path dataFolder = FindDataFolder();             // computed once: the working directory may change
  const fs::path folder = dataFolder / identifier;
  std::error_code error;
  if (!fs::is_directory(folder, error)) return nullptr;
  const std::lock_guard lock(mutex);
  CFBundleRef& bundle = bundles[identifier];
  if (!bundle) bundle = new __CFBundle(folder);
  return bundle;
}

CFURLRef FindResource(const fs::path& bundle, CFStringRef name, CFStringRef type, CFStringRef subdirectory) {
  fs::path file = subdirectory ? bundle / subdirectory->utf8 : bundle;
  file /= type && !type->utf8.empty() ? name->utf8 + '.' + type->utf8 : name->utf8;
  std::error_code error;
  if (!fs::is_regular_file(file, error)) return nullptr;
  const std::string& path = file.native();
  return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()),
                                                 static_cast<CFIndex>(path.size()), false);
}

}  // namespace

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier) {
  if (!identifier || !IsFolderName(identifier->utf8)) return nullptr;
  try {
    return FindBundle(identifier->utf8);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

CFURLRef CFBundleCopyResourceURL(CFBundleRef bundle, CFStringRef name, CFStringRef type, CFStringRef subdirectory) {
  if (!bundle || !name) return nullptr;
  try {
    return FindResource(bundle->path, name, type, subdirectory);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
