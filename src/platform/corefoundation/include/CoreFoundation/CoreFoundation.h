/*
 * The part of CoreFoundation that CatalogCore uses, for platforms without CoreFoundation.
 *
 * Ownership: a function with Create or Copy in its name returns a reference that the caller releases with CFRelease. A
 * function with Get in its name returns an object that the caller does not own.
 *
 * Thread safety: reference counts are atomic. Objects never change after their creation, so any thread may use them.
 * The exception are dictionaries: while a thread changes one, no other thread may use it.
 */
#ifndef CATALOGCORE_COREFOUNDATION_COREFOUNDATION_H_
#define CATALOGCORE_COREFOUNDATION_COREFOUNDATION_H_

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFPropertyList.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

#endif /* CATALOGCORE_COREFOUNDATION_COREFOUNDATION_H_ */
