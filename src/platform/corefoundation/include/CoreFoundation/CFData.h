/* Immutable bytes. */
#ifndef CATALOGCORE_COREFOUNDATION_CFDATA_H_
#define CATALOGCORE_COREFOUNDATION_CFDATA_H_

#include <CoreFoundation/CFBase.h>

typedef const struct __CFData* CFDataRef;

CF_EXPORT CFTypeID CFDataGetTypeID(void);

/* A copy of the `length` bytes; `bytes` may be null when there are none. Null if the length is negative, or without
 * memory. */
CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);

/* The bytes themselves, which must stay and not change as long as the object lasts. `deallocator` is kCFAllocatorNull;
 * null for any other, which would have the bytes freed, and as above. */
CF_EXPORT CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                                                CFAllocatorRef deallocator);

CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);

/* The bytes, which last as long as the object; null possibly when there are none. */
CF_EXPORT const UInt8* CFDataGetBytePtr(CFDataRef data);

/* Copies the bytes of `range` into `buffer`. REQUIRES: the range lies within the data. */
CF_EXPORT void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* buffer);

#endif /* CATALOGCORE_COREFOUNDATION_CFDATA_H_ */
