/*
 * What programs have compiled into them: the layout of the records, the values of the constants, the types of the calls.
 * If this does not compile, programs built with an earlier header break; docs/compatibility.md says what may change.
 */
#include <catalogcore.h>
#include <stddef.h>

#define FIELD(record, field, offset, size)                                                        \
  _Static_assert(offsetof(record, field) == (offset) && sizeof(((record*)NULL)->field) == (size), \
                 #record "." #field " has another place or width")
#define VALUE(constant, value) _Static_assert((constant) == (value), #constant " has another value")
#define SIZE(type, size) _Static_assert(sizeof(type) == (size), #type " has another size")

SIZE(IDXSTR, 8);
SIZE(IDXSTATUS, 4);
SIZE(IDXFIND, 8);

FIELD(IDXITEM, operation, 0, 1);
FIELD(IDXITEM, name, 8, 8);
FIELD(IDXITEM, path, 16, 8);
FIELD(IDXITEM, index, 24, 4);
FIELD(IDXITEM, attribute, 28, 1);
FIELD(IDXITEM, mask, 32, 4);
FIELD(IDXITEM, state, 36, 1);
SIZE(IDXITEM, 40);

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
SIZE(IDXDSDATA, 48);

VALUE(IDX_OK, 0);
VALUE(IDXERR_FAILED, 1);
VALUE(IDXERR_PARAM, 2);
VALUE(IDXERR_NODATA, 3);
VALUE(IDXERR_EMPTY, 4);
VALUE(IDXERR_VERSION, 6);
VALUE(IDXERR_NOIMAGE, 7);
VALUE(IDXERR_NOINDEX, 8);
VALUE(IDXERR_IMAGEEXISTS, 9);
VALUE(IDXERR_INDEXEXISTS, 10);
VALUE(IDXERR_INDEXFULL, 11);
VALUE(IDXERR_MEMORY, 12);
VALUE(IDXERR_NOTEMPTY, 13);
VALUE(IDXERR_PROTECTED, 14);
VALUE(IDXERR_DETECTOR, 16);
VALUE(IDXERR_IMAGESIZE, 18);
VALUE(IDXERR_RECOGNIZER, 256);
VALUE(IDXERR_FACES, 512);

VALUE(IDXOP_GETINFO, 1);
VALUE(IDXOP_CONDITION, 2);
VALUE(IDXMASK_NAME, 1);
VALUE(IDXMASK_PATH, 2);
VALUE(IDXMASK_INDEX, 4);
VALUE(IDXMASK_ATTRIBUTE, 8);
VALUE(IDXSTATE_FORCE, 1);
VALUE(IDXATTR_NOMOVE, 1);
VALUE(IDXATTR_NOREMOVE, 2);
VALUE(IDXATTR_NORENAME, 4);

VALUE(IDX_ROOT, -1);
VALUE(IDXPRESET_PHOTO, 1000000);
VALUE(IDXPRESET_PHOTO_FACES, 1010000);
VALUE(IDXPRESET_PHOTO_OTHER, 1090000);
VALUE(IDXPRESET_DOCUMENT, 2000000);
VALUE(IDXPRESET_DOCUMENT_CARD, 2010000);
VALUE(IDXPRESET_DOCUMENT_POST, 2020000);
VALUE(IDXPRESET_DOCUMENT_PAGE, 2030000);
VALUE(IDXPRESET_DOCUMENT_FIXED, 2040000);
VALUE(IDXPRESET_DOCUMENT_OTHER, 2090000);
VALUE(IDXPRESET_OTHER, 9000000);

/* The calls, declared once more: another type is an error. */
uint32_t IDXInitialize(void);
uint32_t IDXUninitialize(void);
uint32_t IDXSetFilePath(CFStringRef*);
uint32_t IDXAddImage(struct IDXITEM*);
uint32_t IDXChangeImage(struct IDXITEM*);
uint32_t IDXRemoveImage(struct IDXITEM*);
uint32_t IDXSearchImage(struct IDXITEM*);
struct IDXFINDHANDLE* IDXFindFirstImage(struct IDXITEM*, uint32_t*);
uint32_t IDXFindNextImage(struct IDXFINDHANDLE*, struct IDXITEM*);
uint32_t IDXCloseFind(struct IDXFINDHANDLE*);
uint32_t IDXAddIndex(struct IDXITEM*);
uint32_t IDXChangeIndex(struct IDXITEM*);
uint32_t IDXRemoveIndex(struct IDXITEM*);
uint32_t IDXSearchIndex(struct IDXITEM*);
struct IDXFINDHANDLE* IDXFindFirstIndex(struct IDXITEM*, uint32_t*);
uint32_t IDXFindNextIndex(struct IDXFINDHANDLE*, struct IDXITEM*);
uint32_t IDXSetPresetIndexName(CFStringRef* const*, const int32_t*, int32_t);
uint32_t IDXLoadIndexFile(CFStringRef*);
uint32_t IDXLoadImageFile(CFStringRef*);
uint32_t IDXWriteIndexFile(CFStringRef*);
uint32_t IDXWriteImageFile(CFStringRef*);
uint32_t IDXDetectScene(struct IDXDSDATA*);

/* Our part of CoreFoundation: the values and widths that the platforms with their own have. */
SIZE(Boolean, 1);
SIZE(CFIndex, 8);
SIZE(CFTypeID, 8);
SIZE(CFOptionFlags, 8);
SIZE(CFStringEncoding, 4);
FIELD(CFRange, location, 0, 8);
FIELD(CFRange, length, 8, 8);
SIZE(CFRange, 16);
VALUE(kCFStringEncodingUTF8, 0x08000100);
VALUE(kCFURLPOSIXPathStyle, 0);
VALUE(kCFPropertyListImmutable, 0);
VALUE(kCFPropertyListMutableContainers, 1);
VALUE(kCFPropertyListMutableContainersAndLeaves, 2);
VALUE(kCFURLUnknownError, -10);
VALUE(kCFURLResourceNotFoundError, -12);
VALUE(kCFURLResourceAccessViolationError, -13);
VALUE(kCFURLImproperArgumentsError, -15);
