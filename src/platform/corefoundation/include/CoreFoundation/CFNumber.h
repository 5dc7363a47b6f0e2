/* Numbers and booleans: values of a property list, which come through a read and a write unchanged. */
#ifndef CATALOGCORE_COREFOUNDATION_CFNUMBER_H_
#define CATALOGCORE_COREFOUNDATION_CFNUMBER_H_

#include <CoreFoundation/CFBase.h>

typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFBoolean* CFBooleanRef;

CF_EXPORT CFTypeID CFNumberGetTypeID(void);
CF_EXPORT CFTypeID CFBooleanGetTypeID(void);

#endif /* CATALOGCORE_COREFOUNDATION_CFNUMBER_H_ */
