/* File URLs: the path of a file or folder. A relative path is taken from the folder that was current at
 * creation. */
#ifndef CATALOGCORE_COREFOUNDATION_CFURL_H_
#define CATALOGCORE_COREFOUNDATION_CFURL_H_

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>

typedef const struct __CFURL* CFURLRef;

/* POSIX is the one path style here; every function fails when given another. */
typedef CFIndex CFURLPathStyle;
enum { kCFURLPOSIXPathStyle = 0 };

CF_EXPORT CFTypeID CFURLGetTypeID(void);

/* Null when the path is null or empty. */
CF_EXPORT CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path, CFURLPathStyle style,
                                                 Boolean isDirectory);

/* The same from `length` bytes of path as the file system has them. Null also when they hold a zero byte. */
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path, CFIndex length,
                                                           Boolean isDirectory);

/* The path as it was given, without trailing slashes. Null when it is not valid UTF-8. */
CF_EXPORT CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);

/* The zero-terminated path for system calls. False, with the buffer unchanged, if `capacity` bytes do not
 * hold it. */
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer,
                                                   CFIndex capacity);

enum {
  kCFURLUnknownError = -10,
  kCFURLResourceNotFoundError = -12,
  kCFURLResourceAccessViolationError = -13,
  kCFURLImproperArgumentsError = -15
};

/*
 * Reads the whole file into `*data`, which the caller releases. False, with null in `*data`, when that fails; `*error`
 * (may be null) then says why: there is no such file (NotFound), it may not be read or is no regular file
 * (AccessViolation), `url` or `data` is null (ImproperArguments), or anything else, such as memory (Unknown); after
 * success it is 0. There are no properties: `*properties` (may be null) gets null, and `desired` is ignored.
 */
CF_EXPORT Boolean CFURLCreateDataAndPropertiesFromResource(CFAllocatorRef allocator, CFURLRef url, CFDataRef* data,
                                                           CFDictionaryRef* properties, CFArrayRef desired,
                                                           SInt32* error);

#endif /* CATALOGCORE_COREFOUNDATION_CFURL_H_ */
