/*
 * Property lists: a string, data, number, boolean or date, or an array or dictionary of property lists, to 512 levels of
 * arrays and dictionaries. As XML they follow the document type PropertyList-1.0.
 */
#ifndef CATALOGCORE_COREFOUNDATION_CFPROPERTYLIST_H_
#define CATALOGCORE_COREFOUNDATION_CFPROPERTYLIST_H_

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFString.h>

typedef CFTypeRef CFPropertyListRef;

/* Whether dictionaries of what is read can be changed; nothing else ever can. */
typedef CFOptionFlags CFPropertyListMutabilityOptions;
enum {
  kCFPropertyListImmutable = 0,
  kCFPropertyListMutableContainers = 1,
  kCFPropertyListMutableContainersAndLeaves = 2
};

/*
 * Reads a property list from XML 1.0 in UTF-8, UTF-16, ISO-8859-1 or US-ASCII, in any layout, with one final zero byte
 * or none; the document type is never fetched. Null for anything else, and nothing is repaired:
 * - XML that is malformed or cut short, declares entities or more than 256 attributes, or refers to an entity that XML
 *   itself does not define;
 * - an element, an attribute or text where the document type has none; only the element plist may have an attribute,
 *   its version;
 * - a key without a value, a value without a key, or a key that its dictionary has already;
 * - base64 with another character than its digits and white space, or not padded to its end with zero bits;
 * - a number or date not written as the document type says: an integer in base 10; a real with digits ahead of the point
 *   and an exponent of either case, or inf, infinity or nan; a date YYYY-MM-DDTHH:MM:SSZ, smaller units left out or not,
 *   that the calendar has;
 * - more than 512 levels.
 * Numbers and dates are kept as they are written, less white space around them. `*error` (may be null) gets null, or
 * after a failure what is wrong and in which line, as a string that the caller releases; without memory it gets null.
 */
CF_EXPORT CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef allocator, CFDataRef xml,
                                                            CFOptionFlags mutability, CFStringRef* error);

/*
 * The property list as XML in UTF-8. Null without memory, and for what is no property list: another kind of object, more
 * than 512 levels, or a string with a character that XML does not have (U+0000 to U+001F but for tab, line feed and
 * carriage return, U+FFFE, U+FFFF).
 */
CF_EXPORT CFDataRef CFPropertyListCreateXMLData(CFAllocatorRef allocator, CFPropertyListRef propertyList);

#endif /* CATALOGCORE_COREFOUNDATION_CFPROPERTYLIST_H_ */
