// The data item of a property-list file, without a copy.
#ifndef CATALOGCORE_PERSIST_PROPERTY_VALUE_H_
#define CATALOGCORE_PERSIST_PROPERTY_VALUE_H_

#include "base/owners.h"

namespace catalogcore {

// Sets `value` to the data under `key`; leaves it null when the file or the key is not there. False when the file
// cannot be read, or holds something else there.
bool ReadPropertyValue(CFURLRef url, CFStringRef key, CFReference<CFDataRef>& value);

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_PROPERTY_VALUE_H_
