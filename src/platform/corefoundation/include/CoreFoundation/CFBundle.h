/*
 * Bundles: folders of resources. A bundle is the folder of its identifier's name in the data folder of the installation
 * or build tree from which this library was loaded.
 */
#ifndef CATALOGCORE_COREFOUNDATION_CFBUNDLE_H_
#define CATALOGCORE_COREFOUNDATION_CFBUNDLE_H_

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

typedef struct __CFBundle* CFBundleRef;

/* Null if the folder does not exist. A bundle is never freed; releasing it does nothing. */
CF_EXPORT CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier);

/*
 * The file "name.type" of the bundle, or "name" if `type` is null or empty, in the folder `subdirectory` of the bundle
 * unless that is null. Null if the file does not exist.
 */
CF_EXPORT CFURLRef CFBundleCopyResourceURL(CFBundleRef bundle, CFStringRef name, CFStringRef type,
                                           CFStringRef subdirectory);

#endif /* CATALOGCORE_COREFOUNDATION_CFBUNDLE_H_ */
