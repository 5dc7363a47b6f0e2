/*
 * Bundles: folders of resources. The bundle of an identifier is the folder of that name in the data folder of the
 * installation that this library was loaded from, or of the build tree.
 */
#ifndef CATALOGCORE_COREFOUNDATION_CFBUNDLE_H_
#define CATALOGCORE_COREFOUNDATION_CFBUNDLE_H_

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

typedef struct __CFBundle* CFBundleRef;

CF_EXPORT CFTypeID CFBundleGetTypeID(void);

/* The bundle, or null if there is no such folder. It is never freed, however often it is released. */
CF_EXPORT CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier);

/*
 * The file "name.type" of the bundle, or "name" with a null or empty type; with `subdirectory` (may be null) below that
 * folder of it. Null if there is no such file.
 */
CF_EXPORT CFURLRef CFBundleCopyResourceURL(CFBundleRef bundle, CFStringRef name, CFStringRef type,
                                           CFStringRef subdirectory);

#endif /* CATALOGCORE_COREFOUNDATION_CFBUNDLE_H_ */
