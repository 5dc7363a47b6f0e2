// rewrite_property_list FROM TO: reads a property list and writes it. Exits with 1 if it is refused.
#include <CoreFoundation/CoreFoundation.h>

#include <fstream>
#include <iterator>
#include <string>

int main(int count, char** arguments) {
  if (count != 3) return 2;
  std::ifstream from(arguments[1], std::ios::binary);
  const std::string xml(std::istreambuf_iterator<char>(from), {});
  const CFDataRef read =
      CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(xml.data()), static_cast<CFIndex>(xml.size()));
  const CFPropertyListRef list =
      CFPropertyListCreateFromXMLData(nullptr, read, kCFPropertyListMutableContainers, nullptr);
  const CFDataRef written = CFPropertyListCreateXMLData(nullptr, list);
  std::ofstream to(arguments[2], std::ios::binary);
  if (written) to.write(reinterpret_cast<const char*>(CFDataGetBytePtr(written)), CFDataGetLength(written));
  const bool isDone = written && to.flush().good();
  CFRelease(written);
  CFRelease(list);
  CFRelease(read);
  return isDone ? 0 : 1;
}
