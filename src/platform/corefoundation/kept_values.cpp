#include "platform/corefoundation/kept_values.h"

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFNumber.h>

namespace catalogcore::cf {

const Scalar* BooleanOf(bool value) {
  static const Scalar& yes = *new Scalar(Kind::kBoolean, "true", {}, Lifetime::kForever);
  static const Scalar& no = *new Scalar(Kind::kBoolean, "false", {}, Lifetime::kForever);
  return value ? &yes : &no;
}

}  // namespace catalogcore::cf

using catalogcore::cf::Kind;

CFTypeID CFArrayGetTypeID() { return static_cast<CFTypeID>(Kind::kArray); }
CFTypeID CFNumberGetTypeID() { return static_cast<CFTypeID>(Kind::kNumber); }
CFTypeID CFBooleanGetTypeID() { return static_cast<CFTypeID>(Kind::kBoolean); }
CFTypeID CFDateGetTypeID() { return static_cast<CFTypeID>(Kind::kDate); }
