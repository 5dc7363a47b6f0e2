/* Immutable bytes. */
#ifndef CATALOGCORE_COREFOUNDATION_CFDATA_H_
#define CATALOGCORE_COREFOUNDATION_CFDATA_H_

#include <CoreFoundation/CFBase.h>

typedef const struct __CFData* CFDataRef;

CF_EXPORT CFTypeID CFDataGetTypeID(void);

/*
 * A copy of `length` bytes. `bytes` may be null if the length is 0. Null if the length is negative, or on allocation
 * failure.
 */
CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);

/*
 * Data that refers to the bytes without a copy; they must not change or be freed before the object is. Null as above,
 * and for another deallocator than kCFAllocatorNull.
 */
CF_EXPORT CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                                                CFAllocatorRef deallocator);

CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);

/* The bytes, valid as long as the object. May be null if the length is 0. */
CF_EXPORT const UInt8* CFDataGetBytePtr(CFDataRef data);

#endif /* CATALOGCORE_COREFOUNDATION_CFDATA_H_ */
