#include "platform/corefoundation/objects.h"

using catalogcore::cf::AsObject;

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef object) {
  if (object) AsObject(object)->Retain();
  return object;
}

void CFRelease(CFTypeRef object) {
  if (object) AsObject(object)->Release();
}

CFIndex CFGetRetainCount(CFTypeRef object) { return object ? AsObject(object)->references() : 0; }

CFTypeID CFGetTypeID(CFTypeRef object) { return object ? static_cast<CFTypeID>(AsObject(object)->kind()) : 0; }
