/* What is compiled into programs: the records' layout and the statuses' values. docs/compatibility.md says what may change. */
#include <catalogcore.h>
#include <stddef.h>

#define FIELD(record, field, offset, size)                                                        \
  _Static_assert(offsetof(record, field) == (offset) && sizeof(((record*)NULL)->field) == (size), \
                 #record "." #field " has another offset or width")

FIELD(IDXITEM, operation, 0, 1);
FIELD(IDXITEM, name, 8, 8);
FIELD(IDXITEM, path, 16, 8);
FIELD(IDXITEM, index, 24, 4);
FIELD(IDXITEM, attribute, 28, 1);
FIELD(IDXITEM, mask, 32, 4);
FIELD(IDXITEM, state, 36, 1);
FIELD(IDXDSDATA, pixels, 0, 8);
FIELD(IDXDSDATA, width, 8, 4);
FIELD(IDXDSDATA, height, 12, 4);
FIELD(IDXDSDATA, rowBytes, 16, 4);
FIELD(IDXDSDATA, bitsPerPixel, 20, 4);
FIELD(IDXDSDATA, resolution, 24, 4);
FIELD(IDXDSDATA, fixedScene, 28, 4);
FIELD(IDXDSDATA, typeHint, 32, 4);
FIELD(IDXDSDATA, photoHint, 36, 2);
FIELD(IDXDSDATA, photoKind, 38, 2);
FIELD(IDXDSDATA, presetIndex, 40, 4);
_Static_assert(sizeof(IDXITEM) == 40 && sizeof(IDXDSDATA) == 48, "a record has another size");
_Static_assert(IDXERR_FAILED == 1 && IDXERR_PARAM == 2 && IDXERR_NODATA == 3 && IDXERR_EMPTY == 4, "statuses 1 to 4");
_Static_assert(IDXERR_VERSION == 6 && IDXERR_NOIMAGE == 7 && IDXERR_NOINDEX == 8, "statuses 6 to 8");
_Static_assert(IDXERR_IMAGEEXISTS == 9 && IDXERR_INDEXEXISTS == 10 && IDXERR_INDEXFULL == 11, "statuses 9 to 11");
_Static_assert(IDXERR_MEMORY == 12 && IDXERR_NOTEMPTY == 13 && IDXERR_PROTECTED == 14, "statuses 12 to 14");
