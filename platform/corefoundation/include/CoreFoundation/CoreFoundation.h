/*
 * The part of CoreFoundation that CatalogCore uses, for platforms that have none.
 *
 * Ownership: a function with Create or Copy in its name returns a reference that the caller releases with
 * CFRelease; one with Get does not. Objects never change after their creation, so any thread may use them;
 * reference counts are atomic.
 */
#ifndef CATALOGCORE_COREFOUNDATION_COREFOUNDATION_H_
#define CATALOGCORE_COREFOUNDATION_COREFOUNDATION_H_

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

#endif /* CATALOGCORE_COREFOUNDATION_COREFOUNDATION_H_ */
