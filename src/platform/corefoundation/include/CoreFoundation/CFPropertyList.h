/*
 * Property lists: a string, data, number, boolean or date, or an array or dictionary of property lists, with at most
 * 512 levels of arrays and dictionaries. Their XML follows the document type PropertyList-1.0.
 */
#ifndef CATALOGCORE_COREFOUNDATION_CFPROPERTYLIST_H_
#define CATALOGCORE_COREFOUNDATION_CFPROPERTYLIST_H_

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFString.h>

typedef CFTypeRef CFPropertyListRef;

/* Ignored: here, the dictionary that is read can always be changed. */
typedef CFOptionFlags CFPropertyListMutabilityOptions;
enum {
  kCFPropertyListImmutable = 0,
  kCFPropertyListMutableContainers = 1,
  kCFPropertyListMutableContainersAndLeaves = 2
};

/*
 * Reads a property list from XML 1.0 in UTF-8, UTF-16, ISO-8859-1 or US-ASCII. One zero byte may follow the XML. The
 * document type is never fetched.
 *
 * If the root is a dictionary, the result is a dictionary, with string and data objects for its strings and data. Every
 * other value (numbers, booleans, dates, arrays, and dictionaries below the root) becomes an opaque object that can
 * only be put into a dictionary and written; the text of numbers and dates is not checked and does not change.
 *
 * Null on allocation failure, and for anything else than a valid property list:
 * - XML that is malformed or truncated, declares entities or more than 256 attributes, or refers to an entity that XML
 *   itself does not define;
 * - an element, an attribute or text where the document type allows none; only the element plist may have an attribute,
 *   its version;
 * - a key without a value, a value without a key, or the same key twice in a dictionary;
 * - base64 with a character other than its digits and white space, or without its padding, or with bits that are not
 *   zero left over at the end;
 * - more than 512 levels.
 *
 * `*error` (may be null) gets null: no reason is given.
 */
CF_EXPORT CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef allocator, CFDataRef xml,
                                                            CFOptionFlags mutability, CFStringRef* error);

/*
 * The property list as XML in UTF-8. Null on allocation failure, for an object that is not a property list, and if a
 * string has a character that XML does not have (U+0000 to U+001F except tab, line feed and carriage return, U+FFFE,
 * U+FFFF).
 */
CF_EXPORT CFDataRef CFPropertyListCreateXMLData(CFAllocatorRef allocator, CFPropertyListRef propertyList);

#endif /* CATALOGCORE_COREFOUNDATION_CFPROPERTYLIST_H_ */
