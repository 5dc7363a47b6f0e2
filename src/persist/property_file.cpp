#include "persist/property_file.h"

#include <limits.h>
#include <sys/stat.h>

#include <cerrno>
#include <string_view>

#include "persist/replace_file.h"

namespace catalogcore {

namespace {

using Dictionary = CFReference<CFMutableDictionaryRef>;

// Returns false if the path is longer than PATH_MAX.
bool PathOf(CFURLRef url, char (&path)[PATH_MAX]) {
  return CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(path), sizeof path);
}

constexpr std::string_view kFinalZero("", 1);

enum class ReadResult { kRead, kMissing, kFailed };

// Any other failure of stat() may hide an existing file. The file then counts as unreadable, so that no empty catalogue
// replaces it.
bool IsMissing(const char* path) {
  struct stat status {};
  return stat(path, &status) != 0 && (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG);
}

// Sets `dictionary` to the dictionary at the top of the file, as a mutable one.
ReadResult ReadDictionary(CFURLRef url, Dictionary& dictionary) {
  char path[PATH_MAX];
  if (!PathOf(url, path) || IsMissing(path)) return ReadResult::kMissing;
  CFDataRef content = nullptr;
  if (!CFURLCreateDataAndPropertiesFromResource(nullptr, url, &content, nullptr, nullptr, nullptr)) {
    return ReadResult::kFailed;
  }
  const CFReference<CFDataRef> data(content);
  const CFReference<CFPropertyListRef> list(
      CFPropertyListCreateFromXMLData(nullptr, data.get(), kCFPropertyListMutableContainers, nullptr));
  if (!list || CFGetTypeID(list.get()) != CFDictionaryGetTypeID()) return ReadResult::kFailed;
  CFRetain(list.get());
  dictionary.reset(static_cast<CFMutableDictionaryRef>(const_cast<void*>(list.get())));
  return ReadResult::kRead;
}

}  // namespace

bool ReadPropertyValue(CFURLRef url, CFStringRef key, CFReference<CFDataRef>& value) {
  if (!key) return false;  // CFSTR could not allocate
  Dictionary dictionary;
  const ReadResult result = ReadDictionary(url, dictionary);
  if (result != ReadResult::kRead) return result == ReadResult::kMissing;
  const CFTypeRef found = CFDictionaryGetValue(dictionary.get(), key);
  if (!found) return true;
  if (CFGetTypeID(found) != CFDataGetTypeID()) return false;
  value.reset(static_cast<CFDataRef>(CFRetain(found)));
  return true;
}

int _WriteKeyData(CFURLRef url, CFStringRef key, const CIDXBuffer& buffer) {
  if (buffer.Capacity() == 0 || buffer.Length() == INT_MAX) return 0;
  char path[PATH_MAX];
  if (!PathOf(url, path)) return 0;
  Dictionary dictionary;
  const ReadResult result = ReadDictionary(url, dictionary);
  if (result == ReadResult::kFailed) return 0;
  if (result == ReadResult::kMissing) {
    dictionary.reset(
        CFDictionaryCreateMutable(nullptr, 0, &kCFCopyStringDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  }
  // The terminator belongs to the item. No copy: the dictionary is released before the buffer.
  const CFReference<CFDataRef> value(CFDataCreateWithBytesNoCopy(nullptr, reinterpret_cast<const UInt8*>(buffer.Text()),
                                                                 CFIndex{buffer.Length()} + 1, kCFAllocatorNull));
  if (!dictionary || !value) return 0;
  CFDictionarySetValue(dictionary.get(), key, value.get());
  if (CFDictionaryGetValue(dictionary.get(), key) != value.get()) return 0;  // the dictionary could not allocate
  const CFReference<CFDataRef> xml(CFPropertyListCreateXMLData(nullptr, dictionary.get()));
  if (!xml) return 0;
  const std::string_view text(reinterpret_cast<const char*>(CFDataGetBytePtr(xml.get())),
                              static_cast<std::size_t>(CFDataGetLength(xml.get())));
  return ReplaceFile(path, {text, kFinalZero}) ? 1 : 0;
}

}  // namespace catalogcore
