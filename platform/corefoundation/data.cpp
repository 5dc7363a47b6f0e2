#include <cstring>
#include <new>
#include <string_view>

#include "platform/corefoundation/data_object.h"

using catalogcore::cf::ByteBuffer;

CFTypeID CFDataGetTypeID() { return static_cast<CFTypeID>(catalogcore::cf::Kind::kData); }

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
  if (length < 0 || (!bytes && length > 0)) return nullptr;
  ByteBuffer copy;
  try {
    copy.Append({reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)});
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  return catalogcore::cf::CreateData(std::move(copy));
}

CFIndex CFDataGetLength(CFDataRef data) { return static_cast<CFIndex>(data->bytes.size()); }

const UInt8* CFDataGetBytePtr(CFDataRef data) { return data->bytes.data(); }

void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* buffer) {
  if (range.length > 0)
    std::memcpy(buffer, data->bytes.data() + range.location, static_cast<std::size_t>(range.length));
}
