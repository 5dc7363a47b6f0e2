/*
 * Dictionaries: values under keys. Keys are strings; values are strings, data, or values read from a property list.
 * Keys keep the order of the file they were read from, or of their first insertion. A dictionary holds a reference to
 * every key and value.
 */
#ifndef CATALOGCORE_COREFOUNDATION_CFDICTIONARY_H_
#define CATALOGCORE_COREFOUNDATION_CFDICTIONARY_H_

#include <CoreFoundation/CFBase.h>

typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;

/*
 * How a dictionary holds keys and values. The constants below are the only valid ones. The two for keys have the same
 * effect, because strings never change.
 */
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

/*
 * An empty dictionary. `capacity` is ignored. Null if the callbacks are not the constants above, or on allocation
 * failure.
 */
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                           const CFDictionaryKeyCallBacks* keyCallBacks,
                                                           const CFDictionaryValueCallBacks* valueCallBacks);

/*
 * The value under the key, owned by the dictionary. Null if the dictionary does not have the key. The time grows with
 * the number of keys.
 */
CF_EXPORT const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);

/*
 * Adds the key with the value, or replaces the value of the key. Does nothing if the key or the value has another type
 * than this page names, or on allocation failure; CFDictionaryGetValue then does not return the value.
 */
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);

#endif /* CATALOGCORE_COREFOUNDATION_CFDICTIONARY_H_ */
