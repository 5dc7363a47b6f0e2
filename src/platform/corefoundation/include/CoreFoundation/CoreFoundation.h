/*
 * The part of CoreFoundation that CatalogCore uses, for platforms that have none.
 *
 * Ownership: a function with Create or Copy in its name returns a reference that the caller releases with
 * CFRelease; one with Get does not. Objects never change after their creation, so any thread may use them;
 * mutable dictionaries are the exception, and no other thread may use one while it is changed. Reference counts are
 * atomic. Freeing never recurses, however deeply objects hold others.
 */
#ifndef CATALOGCORE_COREFOUNDATION_COREFOUNDATION_H_
#define CATALOGCORE_COREFOUNDATION_COREFOUNDATION_H_

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFPropertyList.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

#endif /* CATALOGCORE_COREFOUNDATION_COREFOUNDATION_H_ */
