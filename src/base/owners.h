// Owners of objects that C interfaces return: CoreFoundation objects and blocks of the C heap.
#ifndef CATALOGCORE_BASE_OWNERS_H_
#define CATALOGCORE_BASE_OWNERS_H_

#include <CoreFoundation/CoreFoundation.h>

#include <cstdlib>
#include <memory>
#include <type_traits>

namespace catalogcore {

struct CFReleaser {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

// Owns one reference to a CoreFoundation object, as returned by a function with Create or Copy in its name:
// CFReference<CFStringRef>.
template <typename Ref>
using CFReference = std::unique_ptr<std::remove_pointer_t<Ref>, CFReleaser>;

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

// Owns a block returned by malloc, calloc or realloc.
template <typename T>
using HeapBlock = std::unique_ptr<T, FreeBlock>;

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_OWNERS_H_
