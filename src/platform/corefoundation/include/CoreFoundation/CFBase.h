/* Basic types, and the functions that every object has. */
#ifndef CATALOGCORE_COREFOUNDATION_CFBASE_H_
#define CATALOGCORE_COREFOUNDATION_CFBASE_H_

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <stdbool.h>
#endif

#ifdef CATALOGCORE_CF_BUILDING
#define CF_EXPORT_ATTRIBUTE __attribute__((visibility("default")))
#else
#define CF_EXPORT_ATTRIBUTE
#endif
#ifdef __cplusplus
#define CF_EXPORT extern "C" CF_EXPORT_ATTRIBUTE
#else
#define CF_EXPORT extern CF_EXPORT_ATTRIBUTE
#endif

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef uint32_t UInt32;
typedef int32_t SInt32;
typedef SInt32 OSStatus;

typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef const void* CFTypeRef;

/*
 * Allocators are ignored: memory comes from the heap. The exception is kCFAllocatorNull as a deallocator, which means
 * that the bytes are not freed.
 */
typedef const struct __CFAllocator* CFAllocatorRef;
CF_EXPORT const CFAllocatorRef kCFAllocatorDefault;
CF_EXPORT const CFAllocatorRef kCFAllocatorNull;

typedef struct {
  CFIndex location;
  CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
  CFRange range;
  range.location = location;
  range.length = length;
  return range;
}

/* Adds a reference and returns the object. Returns null for null. */
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);

/* Removes a reference. The object is freed with its last reference. Does nothing for null. */
CF_EXPORT void CFRelease(CFTypeRef object);

/* The number of references, for debugging: other threads may change it at any time. */
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);

/* The type of the object, to be compared with CFDataGetTypeID() or CFDictionaryGetTypeID(). */
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);

#endif /* CATALOGCORE_COREFOUNDATION_CFBASE_H_ */
