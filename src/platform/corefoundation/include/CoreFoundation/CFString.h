/* Immutable text. Lengths and ranges count UTF-16 units. */
#ifndef CATALOGCORE_COREFOUNDATION_CFSTRING_H_
#define CATALOGCORE_COREFOUNDATION_CFSTRING_H_

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>

typedef const struct __CFString* CFStringRef;

/* UTF-8 is the one encoding here; every function fails when given another. */
typedef UInt32 CFStringEncoding;
enum { kCFStringEncodingUTF8 = 0x08000100 };

CF_EXPORT CFTypeID CFStringGetTypeID(void);

/*
 * A string of the zero-terminated text. Null when the text is null or not valid UTF-8 (overlong forms,
 * surrogates and values above U+10FFFF are invalid), or when there is no memory.
 */
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding);

/* A string of the bytes, less a byte-order mark ahead of them. Null when they are not valid UTF-8, or without memory. */
CF_EXPORT CFStringRef CFStringCreateFromExternalRepresentation(CFAllocatorRef allocator, CFDataRef data,
                                                               CFStringEncoding encoding);

/* The string of a literal of valid UTF-8; the same one for the same text, and never freed. */
#define CFSTR(literal) __CFStringMakeConstantString("" literal "")
CF_EXPORT CFStringRef __CFStringMakeConstantString(const char* text);

/* The length in UTF-16 units. */
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);

/* A number of bytes that `length` UTF-16 units never exceed in the encoding, terminator excluded; -1 if unknown. */
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);

/*
 * Converts the units of `range` (cut to the string) into `buffer`, at most `capacity` bytes, without a
 * terminator; a null buffer only counts. `*used` (may be null) gets the bytes needed or written. Returns the
 * units converted; it stops ahead of a character that does not fit or that the range cuts in two. `lossByte`
 * and `isExternalRepresentation` make no difference in UTF-8.
 */
CF_EXPORT CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                                   Boolean isExternalRepresentation, UInt8* buffer, CFIndex capacity, CFIndex* used);

/* Copies the text and a terminator into `buffer`. False, with the buffer unchanged, if it does not fit. */
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex capacity, CFStringEncoding encoding);

#endif /* CATALOGCORE_COREFOUNDATION_CFSTRING_H_ */
