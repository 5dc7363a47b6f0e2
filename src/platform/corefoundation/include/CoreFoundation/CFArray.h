/* Arrays: values of a property list, which come through a read and a write unchanged. */
#ifndef CATALOGCORE_COREFOUNDATION_CFARRAY_H_
#define CATALOGCORE_COREFOUNDATION_CFARRAY_H_

#include <CoreFoundation/CFBase.h>

typedef const struct __CFArray* CFArrayRef;

CF_EXPORT CFTypeID CFArrayGetTypeID(void);

#endif /* CATALOGCORE_COREFOUNDATION_CFARRAY_H_ */
