// rewrite_property_list FROM TO: reads a property list and writes it. Exits with 1, and says why, if it is refused.
#include <CoreFoundation/CoreFoundation.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace {

CFDataRef ReadFile(std::string_view path) {
  const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
      kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()), false);
  CFDataRef data = nullptr;
  SInt32 error = 0;
  if (!CFURLCreateDataAndPropertiesFromResource(kCFAllocatorDefault, url, &data, nullptr, nullptr, &error)) {
    std::fprintf(stderr, "cannot read the file (%d)\n", static_cast<int>(error));
  }
  CFRelease(url);
  return data;
}

bool WriteFile(const char* path, CFDataRef data) {
  std::FILE* const file = std::fopen(path, "wb");
  if (!file) return false;
  const auto size = static_cast<std::size_t>(CFDataGetLength(data));
  const bool isWritten = std::fwrite(CFDataGetBytePtr(data), 1, size, file) == size;
  return (std::fclose(file) == 0) && isWritten;
}

CFPropertyListRef Parse(CFDataRef xml) {
  CFStringRef error = nullptr;
  const CFPropertyListRef list =
      CFPropertyListCreateFromXMLData(kCFAllocatorDefault, xml, kCFPropertyListMutableContainers, &error);
  char text[256] = "no memory";
  if (error) CFStringGetCString(error, text, sizeof text, kCFStringEncodingUTF8);
  if (!list) std::fprintf(stderr, "%s\n", text);
  CFRelease(error);
  return list;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 2;
  const CFDataRef read = ReadFile(arguments[1]);
  if (!read) return 1;
  const CFPropertyListRef list = Parse(read);
  CFRelease(read);
  if (!list) return 1;
  const CFDataRef written = CFPropertyListCreateXMLData(kCFAllocatorDefault, list);
  const bool isDone = written && WriteFile(arguments[2], written);
  CFRelease(written);
  CFRelease(list);
  return isDone ? 0 : 1;
}
