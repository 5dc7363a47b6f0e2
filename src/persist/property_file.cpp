#include "persist/property_file.h"

#include <limits.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "base/owners.h"
#include "persist/property_value.h"
#include "persist/replace_file.h"

namespace catalogcore {

namespace {

using Dictionary = CFReference<CFMutableDictionaryRef>;

// The path for system calls; false when it is longer than any path.
bool PathOf(CFURLRef url, char (&path)[PATH_MAX]) {
  return CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(path), sizeof path);
}

constexpr std::string_view kFinalZero("", 1);

enum class ReadResult { kRead, kMissing, kFailed };

// Whether there is no such file. A folder or a disk that does not answer leaves that open, and then a catalogue must
// neither begin empty nor take the file's place.
bool IsMissing(const char* path) {
  struct stat status {};
  return stat(path, &status) != 0 && (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG);
}

// The dictionary at the file's top, for changing. kMissing when the URL names nothing; kFailed when it names nothing that
// this library can read.
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
  if (!key) return false;  // a constant for which there was no memory: nothing is known of the file
  Dictionary dictionary;
  const ReadResult result = ReadDictionary(url, dictionary);
  if (result != ReadResult::kRead) return result == ReadResult::kMissing;
  const CFTypeRef found = CFDictionaryGetValue(dictionary.get(), key);
  if (!found) return true;
  if (CFGetTypeID(found) != CFDataGetTypeID()) return false;
  value.reset(static_cast<CFDataRef>(CFRetain(found)));
  return true;
}

int _ReadKeyData(CFURLRef url, CFStringRef key, void* block, std::int32_t* size) {
  if (!size) return 0;
  const std::int32_t room = *size;
  *size = 0;
  CFReference<CFDataRef> value;
  if (!ReadPropertyValue(url, key, value)) return 0;
  if (!value) return 1;
  CFIndex count = std::min<CFIndex>(CFDataGetLength(value.get()), INT_MAX);
  if (block) {
    count = std::min<CFIndex>(count, std::max(room, 0));
    if (count > 0) std::memcpy(block, CFDataGetBytePtr(value.get()), static_cast<std::size_t>(count));
  }
  *size = static_cast<std::int32_t>(count);
  return 1;
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
  // The terminator belongs to the item. The dictionary, which alone shares the item, ends before the buffer does.
  const CFReference<CFDataRef> value(CFDataCreateWithBytesNoCopy(nullptr, reinterpret_cast<const UInt8*>(buffer.Text()),
                                                                 CFIndex{buffer.Length()} + 1, kCFAllocatorNull));
  if (!dictionary || !value) return 0;
  CFDictionarySetValue(dictionary.get(), key, value.get());
  if (CFDictionaryGetValue(dictionary.get(), key) != value.get()) return 0;  // no memory
  const CFReference<CFDataRef> xml(CFPropertyListCreateXMLData(nullptr, dictionary.get()));
  if (!xml) return 0;
  const std::string_view text(reinterpret_cast<const char*>(CFDataGetBytePtr(xml.get())),
                              static_cast<std::size_t>(CFDataGetLength(xml.get())));
  return ReplaceFile(path, {text, kFinalZero}) ? 1 : 0;
}

}  // namespace catalogcore
