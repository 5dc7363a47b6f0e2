#include "platform/corefoundation/object.h"

using catalogcore::cf::Object;

const CFAllocatorRef kCFAllocatorDefault = nullptr;

namespace {

const Object* AsObject(CFTypeRef object) { return static_cast<const Object*>(object); }

}  // namespace

CFTypeRef CFRetain(CFTypeRef object) {
  if (object) AsObject(object)->Retain();
  return object;
}

void CFRelease(CFTypeRef object) {
  if (object) AsObject(object)->Release();
}

CFIndex CFGetRetainCount(CFTypeRef object) { return object ? AsObject(object)->references() : 0; }

CFTypeID CFGetTypeID(CFTypeRef object) { return object ? static_cast<CFTypeID>(AsObject(object)->kind()) : 0; }
