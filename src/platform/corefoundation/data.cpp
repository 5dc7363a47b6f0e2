#include <cstring>
#include <new>
#include <string_view>

#include "platform/corefoundation/objects.h"

using catalogcore::cf::ByteBuffer;

struct __CFAllocator {};

namespace {

constexpr __CFAllocator nullAllocator;

bool CanBe(const UInt8* bytes, CFIndex length) { return length == 0 || (bytes && length > 0); }

std::string_view View(const UInt8* bytes, CFIndex length) {
  return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

}  // namespace

const CFAllocatorRef kCFAllocatorNull = &nullAllocator;

CFTypeID CFDataGetTypeID() { return static_cast<CFTypeID>(catalogcore::cf::Kind::kData); }

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
  if (!CanBe(bytes, length)) return nullptr;
  ByteBuffer copy;
  try {
    copy.Append(View(bytes, length));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  return catalogcore::cf::CreateData(std::move(copy));
}

CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef, const UInt8* bytes, CFIndex length, CFAllocatorRef deallocator) {
  if (!CanBe(bytes, length) || deallocator != kCFAllocatorNull) return nullptr;
  return catalogcore::cf::Create<__CFData>(View(bytes, length));
}

CFIndex CFDataGetLength(CFDataRef data) { return static_cast<CFIndex>(data->bytes.size()); }

const UInt8* CFDataGetBytePtr(CFDataRef data) { return reinterpret_cast<const UInt8*>(data->bytes.data()); }
