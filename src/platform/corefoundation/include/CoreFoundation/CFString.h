/* Immutable text. Lengths and ranges count UTF-16 units. */
#ifndef CATALOGCORE_COREFOUNDATION_CFSTRING_H_
#define CATALOGCORE_COREFOUNDATION_CFSTRING_H_

#include <CoreFoundation/CFBase.h>

typedef const struct __CFString* CFStringRef;

/* UTF-8 is the only encoding; every function fails for another. */
typedef UInt32 CFStringEncoding;
enum { kCFStringEncodingUTF8 = 0x08000100 };

/*
 * A string with the zero-terminated text. Null if the text is null or not valid UTF-8 (overlong forms, surrogates and
 * values above U+10FFFF are invalid), or on allocation failure.
 */
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding);

/* The string of a literal in valid UTF-8. Equal literals give the same string, which is never freed. */
#define CFSTR(literal) __CFStringMakeConstantString("" literal "")
CF_EXPORT CFStringRef __CFStringMakeConstantString(const char* text);

/* The length in UTF-16 units. */
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);

/*
 * The number of bytes, without a terminator, that `length` UTF-16 units need at most. -1 if the length or the encoding
 * is invalid.
 */
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);

/*
 * Converts the UTF-16 units of `range`, cut off at the end of the string, into at most `capacity` bytes of `buffer`,
 * without a terminator. With a null buffer, only counts. `*used` (may be null) gets the number of bytes. Returns the
 * number of units converted. The conversion stops before a character that does not fit or that the range splits.
 * `lossByte` and `isExternalRepresentation` have no effect.
 */
CF_EXPORT CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                                   Boolean isExternalRepresentation, UInt8* buffer, CFIndex capacity, CFIndex* used);

/* Copies the text and a terminator into `buffer`. If they do not fit, returns false and leaves the buffer unchanged. */
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex capacity, CFStringEncoding encoding);

#endif /* CATALOGCORE_COREFOUNDATION_CFSTRING_H_ */
