// Every object of this library: a reference count, a kind, and the content that the kind has.
//
// Thread safety: reference counts are atomic. Objects are constant after their creation, except dictionaries, which no
// other thread may use while one changes them.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_OBJECTS_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_OBJECTS_H_

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/corefoundation/byte_buffer.h"

namespace catalogcore::cf {

enum class Kind : std::uint8_t { kString = 1, kURL, kBundle, kData, kDictionary, kKept };

// Releasing an object that lasts for ever does nothing.
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
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

 protected:
  explicit Object(Kind kind, Lifetime lifetime = Lifetime::kCounted) : kind_(kind), lifetime_(lifetime) {}

 private:
  mutable std::atomic<CFIndex> references_{1};
  const Kind kind_;
  const Lifetime lifetime_;
};

struct Releaser {
  void operator()(const Object* object) const { object->Release(); }
};

// An owned reference.
template <typename T>
using Ref = std::unique_ptr<const T, Releaser>;

inline const Object* AsObject(CFTypeRef object) { return static_cast<const Object*>(object); }

// One more reference to the object.
template <typename T>
Ref<T> Share(const T* object) {
  object->Retain();
  return Ref<T>(object);
}

// Creates an object with one reference. Null on allocation failure: no exception leaves this library.
template <typename T, typename... Arguments>
const T* Create(Arguments&&... arguments) noexcept {
  try {
    return new T(std::forward<Arguments>(arguments)...);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// A value of a property list that this library does not interpret: a number, date, boolean or array, or a dictionary
// within another. `xml` is its element in UTF-8, with the text of numbers and dates unchanged.
struct KeptValue final : Object {
  explicit KeptValue(ByteBuffer&& element) : Object(Kind::kKept), xml(std::move(element)) {}
  const ByteBuffer xml;
};

}  // namespace catalogcore::cf

// Invariant: `utf8` is valid UTF-8, and `utf16Length` is its length in UTF-16 units.
struct __CFString final : catalogcore::cf::Object {
  __CFString(std::string_view text, CFIndex units, catalogcore::cf::Lifetime lifetime)
      : Object(catalogcore::cf::Kind::kString, lifetime), utf8(text), utf16Length(units) {}
  const std::string utf8;
  const CFIndex utf16Length;
};

struct __CFData final : catalogcore::cf::Object {
  explicit __CFData(catalogcore::cf::ByteBuffer&& content)
      : Object(catalogcore::cf::Kind::kData), owned(std::move(content)), bytes(owned.view()) {}
  explicit __CFData(std::string_view borrowed) : Object(catalogcore::cf::Kind::kData), bytes(borrowed) {}
  const catalogcore::cf::ByteBuffer owned;  // empty if `bytes` belong to the caller
  const std::string_view bytes;
};

// Invariants: keys differ; values are strings, data or kept values, so dictionaries never hold each other.
struct __CFDictionary final : catalogcore::cf::Object {
  struct Entry {
    catalogcore::cf::Ref<__CFString> key;
    catalogcore::cf::Ref<catalogcore::cf::Object> value;
  };
  __CFDictionary() : Object(catalogcore::cf::Kind::kDictionary) {}
  std::vector<Entry> entries;  // in the order of the file, then of insertion
};

namespace catalogcore::cf {

// Null if the text is not valid UTF-8, or on allocation failure.
CFStringRef CreateString(std::string_view utf8, Lifetime lifetime = Lifetime::kCounted);

// Takes the buffer over. Null on allocation failure.
inline CFDataRef CreateData(ByteBuffer&& bytes) {
  bytes.Fit();
  return Create<__CFData>(std::move(bytes));
}

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_OBJECTS_H_
