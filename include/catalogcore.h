/* CatalogCore: a catalogue of image files in memory. Usable from C and C++. */
#ifndef CATALOGCORE_H_
#define CATALOGCORE_H_

#include <CoreFoundation/CoreFoundation.h>
#include <stdint.h>

/*
 * Text that crosses the boundary: a pointer to a string variable of the application.
 * On input the library reads the string that the variable holds and never releases it. On output it stores a
 * new string, which the application owns and releases; a string that the variable held before is not
 * released.
 */
typedef CFStringRef* IDXSTR;

/* What a call returns. */
typedef uint32_t IDXSTATUS;

enum {
  IDX_OK = 0,        /* success */
  IDXERR_FAILED = 1, /* a string cannot be converted, a file cannot be read or written */
  IDXERR_MEMORY = 12 /* memory could not be allocated; also an empty string handed in */
};

/* Protection bits of an image's or an index's attribute byte; other bits are kept and returned unchanged. */
enum {
  IDXATTR_NOMOVE = 1,   /* not moved to another index without force */
  IDXATTR_NOREMOVE = 2, /* not removed without force */
  IDXATTR_NORENAME = 4  /* not renamed without force (indexes) */
};

#endif /* CATALOGCORE_H_ */
