// Owns one reference to a CoreFoundation object.
#ifndef CATALOGCORE_BASE_OWNERS_H_
#define CATALOGCORE_BASE_OWNERS_H_

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace catalogcore {

struct CFReleaser {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

// For what a function with Create or Copy in its name returned: CFReference<CFStringRef>.
template <typename Ref>
using CFReference = std::unique_ptr<std::remove_pointer_t<Ref>, CFReleaser>;

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_OWNERS_H_
