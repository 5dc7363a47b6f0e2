#include "platform/corefoundation/objects.h"

#include <bit>

namespace catalogcore::cf {

void Object::Free() const {
  thread_local const Object* waiting = nullptr;
  thread_local bool isFreeing = false;
  references_.store(std::bit_cast<CFIndex>(waiting), std::memory_order_relaxed);
  waiting = this;
  if (isFreeing) return;  // called by a destructor that runs below
  isFreeing = true;
  while (const Object* object = waiting) {
    waiting = std::bit_cast<const Object*>(object->references());
    delete object;
  }
  isFreeing = false;
}

}  // namespace catalogcore::cf

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
