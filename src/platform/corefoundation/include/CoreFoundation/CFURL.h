/*
 * File URLs: the path of a file or folder. A relative path is relative to the working directory at the creation of the
 * URL.
 */
#ifndef CATALOGCORE_COREFOUNDATION_CFURL_H_
#define CATALOGCORE_COREFOUNDATION_CFURL_H_

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>

typedef const struct __CFURL* CFURLRef;
typedef const struct __CFArray* CFArrayRef; /* the type of a parameter; there are no arrays */

/* POSIX is the only path style; every function fails for another. */
typedef CFIndex CFURLPathStyle;
enum { kCFURLPOSIXPathStyle = 0 };

/* Null if the path is null or empty, or on allocation failure. */
CF_EXPORT CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path, CFURLPathStyle style,
                                                 Boolean isDirectory);

/* The same for a path of `length` bytes in the encoding of the file system. Null also if the path has a zero byte. */
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path, CFIndex length,
                                                           Boolean isDirectory);

/* The path that was given, without trailing slashes. Null if it is not valid UTF-8, or on allocation failure. */
CF_EXPORT CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);

/*
 * Copies the zero-terminated path for system calls into `buffer`, made absolute if `resolveAgainstBase`. If it does not
 * fit, returns false and leaves the buffer unchanged.
 */
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer,
                                                   CFIndex capacity);

enum { kCFURLUnknownError = -10 };

/*
 * Reads the whole file into `*data`, which the caller releases. On failure returns false and sets `*data` to null: the
 * file is missing, unreadable or not a regular file, `url` or `data` is null, or memory could not be allocated.
 * `*error` (may be null) gets 0 or, after any failure, kCFURLUnknownError. `*properties` (may be null) gets null;
 * `desired` is ignored.
 */
CF_EXPORT Boolean CFURLCreateDataAndPropertiesFromResource(CFAllocatorRef allocator, CFURLRef url, CFDataRef* data,
                                                           CFDictionaryRef* properties, CFArrayRef desired,
                                                           SInt32* error);

#endif /* CATALOGCORE_COREFOUNDATION_CFURL_H_ */
