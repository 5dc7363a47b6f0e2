/*
 * Dictionaries: objects under keys, which are strings; any other key is never found nor set. Keys keep the order of
 * their first insertion, or that of the file they were read from. A dictionary holds a reference to every key and value.
 */
#ifndef CATALOGCORE_COREFOUNDATION_CFDICTIONARY_H_
#define CATALOGCORE_COREFOUNDATION_CFDICTIONARY_H_

#include <CoreFoundation/CFBase.h>

typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;

/* How keys and values are held. There are no others than the ones given here; the two for keys do the same, since
 * strings never change. */
typedef struct {
  CFIndex version;
} CFDictionaryKeyCallBacks;
typedef struct {
  CFIndex version;
} CFDictionaryValueCallBacks;
CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);

/* An empty dictionary that can be changed. `capacity` is ignored. Null with callbacks of the caller's own, or without
 * memory. */
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                           const CFDictionaryKeyCallBacks* keyCallBacks,
                                                           const CFDictionaryValueCallBacks* valueCallBacks);

/* A dictionary that can be changed, of the same keys and the very same values. Null without memory. */
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                               CFDictionaryRef dictionary);

CF_EXPORT CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
CF_EXPORT Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key);

/* The value under the key, which the dictionary goes on holding; null if there is none. */
CF_EXPORT const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);

/*
 * Puts the value under the key; a key that is there already keeps its place. Nothing changes with a null value, in a
 * dictionary that was not made to be changed, or without memory: CFDictionaryGetValue tells.
 */
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);

/* Takes the key and its value out, if they are there. */
CF_EXPORT void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);

#endif /* CATALOGCORE_COREFOUNDATION_CFDICTIONARY_H_ */
