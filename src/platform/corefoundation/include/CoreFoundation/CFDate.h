/* Dates: values of a property list, which come through a read and a write unchanged. */
#ifndef CATALOGCORE_COREFOUNDATION_CFDATE_H_
#define CATALOGCORE_COREFOUNDATION_CFDATE_H_

#include <CoreFoundation/CFBase.h>

typedef const struct __CFDate* CFDateRef;

CF_EXPORT CFTypeID CFDateGetTypeID(void);

#endif /* CATALOGCORE_COREFOUNDATION_CFDATE_H_ */
