// What every object here has: a reference count and a kind.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_OBJECTS_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_OBJECTS_H_

#include <CoreFoundation/CFBase.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace catalogcore::cf {

enum class Kind : std::uint8_t { kString = 1, kURL, kBundle, kData, kDictionary, kArray, kNumber, kBoolean, kDate };

// Objects that last as long as the process: releases, one too many included, do nothing to them.
enum class Lifetime : std::uint8_t { kCounted, kForever };

class Object {
 public:
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;

  Kind kind() const { return kind_; }
  CFIndex references() const { return references_.load(std::memory_order_relaxed); }
  void Retain() const { references_.fetch_add(1, std::memory_order_relaxed); }
  void Release() const {
    if (lifetime_ == Lifetime::kForever) return;
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) Free();
  }

 protected:
  explicit Object(Kind kind, Lifetime lifetime = Lifetime::kCounted) : kind_(kind), lifetime_(lifetime) {}

 private:
  // Never recurses, however deeply the object holds others.
  void Free() const;

  mutable std::atomic<CFIndex> references_{1};  // of an object that waits to be freed: the address of the next
  const Kind kind_;
  const Lifetime lifetime_;
};

struct Releaser {
  void operator()(const Object* object) const { object->Release(); }
};

// A reference that is given up with its holder.
template <typename T>
using Ref = std::unique_ptr<const T, Releaser>;

inline const Object* AsObject(CFTypeRef object) { return static_cast<const Object*>(object); }

// One more reference to the object.
template <typename T>
Ref<T> Share(const T* object) {
  object->Retain();
  return Ref<T>(object);
}

// Makes an object with one reference, or null when there is no memory: no exception leaves this library.
template <typename T, typename... Arguments>
const T* Create(Arguments&&... arguments) noexcept {
  try {
    return new T(std::forward<Arguments>(arguments)...);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_OBJECTS_H_
