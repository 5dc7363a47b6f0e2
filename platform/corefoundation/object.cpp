#include "platform/corefoundation/object.h"

namespace catalogcore::cf {

void Object::Free() const {
  static_assert(sizeof(CFIndex) == sizeof(const Object*));
  thread_local const Object* waiting = nullptr;
  thread_local bool isFreeing = false;
  references_.store(reinterpret_cast<CFIndex>(waiting), std::memory_order_relaxed);
  waiting = this;
  if (isFreeing) return;  // called by a destructor that runs below
  isFreeing = true;
  while (const Object* object = waiting) {
    waiting = reinterpret_cast<const Object*>(object->references());
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
