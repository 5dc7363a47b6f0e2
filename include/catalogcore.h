/*
 * CatalogCore: a catalogue of image files in memory, for C and C++.
 *
 * An image is identified by the full path of its file. It is filed under one index, a category in a tree of
 * categories, and under the folder of its file. The tree of indexes begins with ten presets. The catalogue is loaded
 * from, and written to, two files below a base directory.
 *
 * Threads: any thread may make any call, and calls wait for each other where they must. There are four exceptions.
 * IDXInitialize, IDXUninitialize and IDXSetFilePath must not overlap any other call. IDXCloseFind must not overlap
 * another call on its handle. A find handle and a record belong to one thread at a time. Two calls must not write the
 * same file at once.
 *
 * No call throws. A call that takes a record returns IDXERR_PARAM for a null one. A call on the catalogue returns
 * IDXERR_FAILED before IDXInitialize; only a find-next call on a handle opened earlier reports the end of its walk.
 *
 * Memory: on allocation failure a call returns IDXERR_MEMORY. It returns IDXERR_FAILED if the memory was needed to
 * convert a string of the application, or to read or write a file. IDXInitialize returns IDXERR_DETECTOR if the
 * memory was needed by the recognizer. IDXSetPresetIndexName returns IDXERR_PARAM, or IDX_OK after a name that it could
 * not convert. The catalogue is then as it was before the call, unless the call says otherwise, and the call may be
 * repeated.
 *
 * Limits: the path of an image has at most 4096 bytes of UTF-8, and at most 512 folders. The tree of indexes has four
 * levels below its root. A file may bring indexes on up to 64 levels, but the number that is written for an index
 * below the fourth level does not identify it: it may be out of range, or that of another index.
 *
 * Case: paths that differ only in the case of ASCII letters are two paths, but about one such pair in 2000 counts as
 * one: the pairs that share one of the catalogue's 1987 hash buckets. With /p/summer78.jpg in the catalogue,
 * /p/SUMMER78.JPG cannot be added (IDXERR_IMAGEEXISTS), and removing it removes /p/summer78.jpg. The same holds for
 * folders. The path that was added first is the one that walks return.
 *
 * Folders: a folder stays in the catalogue after its last image was removed, until IDXInitialize or IDXUninitialize.
 * It takes some 250 bytes and those of its path, and keeps its place in the order of walks.
 */
#ifndef CATALOGCORE_H_
#define CATALOGCORE_H_

#include <CoreFoundation/CoreFoundation.h>
#include <stdint.h>

/* The major version of this header: programs built with another one must be built again. */
#define CATALOGCORE_VERSION_MAJOR 1
/* The minor version, which grows when something is added. */
#define CATALOGCORE_VERSION_MINOR 0
/* The patch version, which grows when only bugs are fixed. */
#define CATALOGCORE_VERSION_PATCH 0
/* All three in one number, to be compared: 1002003 is version 1.2.3. */
#define CATALOGCORE_VERSION_NUMBER \
  (CATALOGCORE_VERSION_MAJOR * 1000000 + CATALOGCORE_VERSION_MINOR * 1000 + CATALOGCORE_VERSION_PATCH)

/*
 * Text that crosses the boundary, UTF-8 inside the library: a pointer to a string variable of the application. On
 * input the library reads the string that the variable holds and never releases it. An empty string gives
 * IDXERR_MEMORY; a null one, or one that cannot be converted, gives IDXERR_FAILED. On output the library stores a new
 * string, which the application owns and releases; a string that the variable held before is not released. The
 * variable is left as it is if the text is not valid UTF-8 (only a file can bring such text) or on allocation
 * failure: set it to NULL before the call to notice.
 */
typedef CFStringRef* IDXSTR;

/* What a call returns. */
typedef uint32_t IDXSTATUS;

enum {
  IDX_OK = 0,              /* success */
  IDXERR_FAILED = 1,       /* not initialised; a string cannot be converted; a file cannot be read or written */
  IDXERR_PARAM = 2,        /* an argument or field is missing or invalid */
  IDXERR_NODATA = 3,       /* the catalogue file is missing or holds nothing of the kind */
  IDXERR_EMPTY = 4,        /* the catalogue file's text has no line */
  IDXERR_VERSION = 6,      /* the catalogue file's text is of another version */
  IDXERR_NOIMAGE = 7,      /* no such image; the end of a walk over images */
  IDXERR_NOINDEX = 8,      /* no such index; the end of a walk over indexes */
  IDXERR_IMAGEEXISTS = 9,  /* the image is in the catalogue already */
  IDXERR_INDEXEXISTS = 10, /* the index is in the catalogue already, or its parent has a child of this name */
  IDXERR_INDEXFULL = 11,   /* the parent has no number left for another child */
  IDXERR_MEMORY = 12,      /* memory could not be allocated; also an empty string handed in */
  IDXERR_NOTEMPTY = 13,    /* the index still has child indexes */
  IDXERR_PROTECTED = 14,   /* the entry's attribute forbids it, and IDXSTATE_FORCE was not given */
  IDXERR_DETECTOR = 16,    /* the scene detector's parameter resource could not be opened */
  IDXERR_IMAGESIZE = 18,   /* the picture is too large for scene detection */
  IDXERR_RECOGNIZER = 256, /* plus the document-type recognizer's own code, 1 to 255 */
  IDXERR_FACES = 512       /* plus the face detector's own code, 1 to 255 */
};

/* Bits of IDXITEM.operation. The other bits are reserved: leave them 0. */
enum {
  IDXOP_GETINFO = 1,  /* write the fields of the entry that was found into the record */
  IDXOP_CONDITION = 2 /* find-first calls: restrict the walk by the marked fields */
};

/*
 * Bits of IDXITEM.mask: the fields that the call may read, and those that it writes. A field that is not marked is
 * neither read nor written; IDXChangeImage says of one exception. The other bits are reserved: leave them 0. They are
 * ignored now, and may get a meaning in a later version.
 */
enum {
  IDXMASK_NAME = 1,     /* IDXITEM.name */
  IDXMASK_PATH = 2,     /* IDXITEM.path */
  IDXMASK_INDEX = 4,    /* IDXITEM.index */
  IDXMASK_ATTRIBUTE = 8 /* IDXITEM.attribute */
};

/* Bits of IDXITEM.state. The other bits are reserved: leave them 0. */
enum {
  IDXSTATE_FORCE = 1 /* override the protection of the entry's attribute */
};

/* Protection bits of an entry's attribute; other bits are kept and returned unchanged. */
enum {
  IDXATTR_NOMOVE = 1,   /* not moved to another index */
  IDXATTR_NOREMOVE = 2, /* not removed */
  IDXATTR_NORENAME = 4  /* not renamed (indexes) */
};

/*
 * Index numbers name the indexes: the position in the tree from the top down, two decimal digits a level for four
 * levels, so 1000000 to 99999999. 1100000 is child 10 of index 1. Presets have the positions 1 to 9, added indexes 10
 * to 29.
 */
enum {
  IDX_ROOT = -1, /* the root of the tree, which holds no image */

  IDXPRESET_PHOTO = 1000000,          /* parent of the presets of photographs */
  IDXPRESET_PHOTO_FACES = 1010000,    /* photographs that show faces */
  IDXPRESET_PHOTO_OTHER = 1090000,    /* other photographs */
  IDXPRESET_DOCUMENT = 2000000,       /* parent of the presets of documents */
  IDXPRESET_DOCUMENT_CARD = 2010000,  /* documents of a card's size */
  IDXPRESET_DOCUMENT_POST = 2020000,  /* of a postcard's, or 4 x 6 inches */
  IDXPRESET_DOCUMENT_PAGE = 2030000,  /* A5, B5, A4, Letter or Legal */
  IDXPRESET_DOCUMENT_FIXED = 2040000, /* documents declared by the application (IDXDSDATA.fixedScene) */
  IDXPRESET_DOCUMENT_OTHER = 2090000, /* documents of any other size */
  IDXPRESET_OTHER = 9000000           /* never chosen by the scene detector */
};

/*
 * One entry of the catalogue: what a call reads, and what it writes. The library keeps no pointer to the record, nor
 * to the string variables.
 */
typedef struct IDXITEM {
  uint8_t operation; /* IDXOP_...; never written */
  IDXSTR name;       /* of an image its full path, of an index its display name */
  IDXSTR path;       /* a folder */
  int32_t index;     /* an index number */
  uint8_t attribute; /* IDXATTR_... and bits of the application */
  uint32_t mask;     /* IDXMASK_...; never written */
  uint8_t state;     /* IDXSTATE_...; never written */
} IDXITEM;

/*
 * A walk over images or indexes, from a find-first call to IDXCloseFind. Any thread may change the catalogue between
 * two steps of the walk:
 * - A step finds what lies ahead at that time: nothing that was removed, and what was added or moved there. So an
 *   image that is moved ahead is found again.
 * - From an image that was removed or moved, the walk goes on with what stood behind the image then. It passes over
 *   what was added in between since.
 * - The walk ends if the index it stands on was removed: the index found last, or, in a walk over images without a
 *   path, the index of the image found last.
 *
 * What is removed or moved takes memory until every walk that was open then is closed; without IDXCloseFind, until
 * IDXInitialize or IDXUninitialize.
 */
typedef struct IDXFINDHANDLE* IDXFIND;

/*
 * One picture, and what is known of it. Byte b of the pixel in column x of row y lies at pixels + y * rowBytes + x *
 * (bitsPerPixel / 8) + b; the picture is rowBytes * height bytes.
 */
typedef struct IDXDSDATA {
  const void* pixels;   /* the application's; read, never written or freed; may be null */
  int32_t width;        /* pixels in a row */
  int32_t height;       /* rows */
  int32_t rowBytes;     /* bytes from one row to the next */
  int32_t bitsPerPixel; /* 8 or 16: one sample a pixel; 24 or 48: three */
  int32_t resolution;   /* dots per inch; 0 or less: unknown */
  int32_t fixedScene;   /* 1: a document, whatever it shows; nothing is analysed */
  int32_t typeHint;     /* 1: document; 2: photograph; else: not known */
  uint16_t photoHint;   /* 3: photograph; else: no effect */
  uint16_t photoKind;   /* 1, 2 or 3: photograph, in which faces are looked for if it is 2; else: no effect */
  int32_t presetIndex;  /* output: number of the preset index that the picture belongs in, or -1 */
} IDXDSDATA;

#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif
#ifdef __cplusplus
extern "C" {
#endif

/* ---- Beginning and end */

/*
 * Makes an empty catalogue with the ten presets, each named "idx" and its number, and no base directory. What an
 * earlier call made is dropped first. IDX_OK: on allocation failure a root or a preset may be missing; IDXERR_MEMORY:
 * nothing is initialised; IDXERR_DETECTOR: the catalogue works, and so does scene detection where the recognizer is
 * not needed.
 */
IDXSTATUS IDXInitialize(void);

/*
 * Drops the catalogue. IDX_OK, also if there is none. Open walks are then at their end and must still be closed. The
 * same holds for open walks after IDXInitialize.
 */
IDXSTATUS IDXUninitialize(void);

/*
 * Sets the directory of the catalogue's files. A "/" is always appended. IDX_OK; IDXERR_PARAM: null; else the status
 * of the invalid string. After IDXERR_MEMORY no directory is set.
 */
IDXSTATUS IDXSetFilePath(IDXSTR path);

/* ---- Images */

/*
 * Files an image; its file need not exist. Reads name, index, and attribute (0 if not marked). IDX_OK; IDXERR_PARAM:
 * a field is missing, the name holds no "/", the name is beyond the limits, its folder holds "//" or ends in "/", the
 * index is out of range or the root; IDXERR_IMAGEEXISTS; IDXERR_NOINDEX; IDXERR_MEMORY: the image's folder may have
 * been made, or folders above it may have been removed with their images: from the nearest folder that was there
 * upward, each that had no folder left below it and holds no protected image.
 */
IDXSTATUS IDXAddImage(IDXITEM* item);

/*
 * Moves an image to another index (if marked), then sets its attribute (if marked). A move stays if the second step
 * fails. With the index marked, an image that is not in the catalogue is added as by IDXAddImage. An index of -1,
 * marked or not, removes the image as by IDXRemoveImage. With neither marked the call does nothing. Reads name,
 * index, attribute, state. IDX_OK; IDXERR_PARAM: as for IDXAddImage; IDXERR_PROTECTED; IDXERR_NOINDEX;
 * IDXERR_NOIMAGE: no such image, and only the attribute is marked; IDXERR_IMAGEEXISTS: another thread added the image
 * meanwhile; IDXERR_MEMORY: the image may be gone if it was to be moved. File it again with its attribute marked.
 */
IDXSTATUS IDXChangeImage(IDXITEM* item);

/* Reads name and state. IDX_OK; IDXERR_PARAM: no name; IDXERR_NOIMAGE; IDXERR_PROTECTED. */
IDXSTATUS IDXRemoveImage(IDXITEM* item);

/* Reads name; writes index and attribute, whatever the operation. IDX_OK; IDXERR_PARAM: no name; IDXERR_NOIMAGE. */
IDXSTATUS IDXSearchImage(IDXITEM* item);

/*
 * Begins a walk over images: without IDXOP_CONDITION over all. Under IDXOP_CONDITION it reads index and path. A
 * marked index restricts the walk to the images of that index and of those below it. IDX_ROOT restricts nothing, so
 * mark index with IDX_ROOT to walk all indexes and have the index of each image written. A marked path restricts the
 * walk to the images in that folder and the folders below it; "." restricts nothing, and one "/" at the end of a path
 * is ignored. "/" alone walks all folders but those whose path begins with /Volumes, in this case of letters: also
 * /Volumes2. To walk such a folder, name it.
 *
 * Under IDXOP_GETINFO it writes name, index and attribute of the first image. Returns the handle, to be closed with
 * IDXCloseFind, and IDX_OK in `*status` (which may be null). Else returns null and IDXERR_NOIMAGE, IDXERR_MEMORY, or
 * the status of a field that is invalid.
 */
IDXFIND IDXFindFirstImage(IDXITEM* item, IDXSTATUS* status);

/*
 * Finds the next image, and writes it as IDXFindFirstImage does. IDX_OK; IDXERR_NOIMAGE: the end; IDXERR_PARAM: a
 * null handle. REQUIRES: the handle is one of IDXFindFirstImage.
 */
IDXSTATUS IDXFindNextImage(IDXFIND find, IDXITEM* item);

/* Ends a walk of either kind and frees its handle, also after IDXUninitialize; null is allowed. IDX_OK. */
IDXSTATUS IDXCloseFind(IDXFIND find);

/* ---- Indexes */

/*
 * Adds an index of this name under the parent that `index` names, at the lowest position from 10 to 29 that is free
 * there. Reads index, name, and attribute (0 if not marked). Under IDXOP_GETINFO writes the new number to index, also
 * on IDXERR_MEMORY. IDX_OK; IDXERR_PARAM: a field is missing, the parent is out of range or on the fourth level;
 * IDXERR_NOINDEX: no parent; IDXERR_INDEXEXISTS: the parent has a child of this name, byte for byte, whose number is
 * written under IDXOP_GETINFO; IDXERR_INDEXFULL; IDXERR_MEMORY: a parent without children may have been removed with
 * its images, if neither it nor an image is protected, and so on upward.
 */
IDXSTATUS IDXAddIndex(IDXITEM* item);

/*
 * Changes the display name (if marked), then the attribute (if marked). Reads index, name, attribute, state. The
 * status of the second step replaces that of the first: with both marked, the call returns IDX_OK for an index that
 * may not be renamed, and changes only its attribute. To learn whether the name was changed, mark name alone. A name
 * that cannot be read ends the call. With neither marked the call returns IDX_OK, also for an index that does not
 * exist. IDX_OK; IDXERR_PARAM: no index, or a marked name without a variable; IDXERR_NOINDEX; IDXERR_PROTECTED;
 * IDXERR_MEMORY; the status of an invalid name.
 */
IDXSTATUS IDXChangeIndex(IDXITEM* item);

/*
 * Removes an index and takes its images out of the catalogue. Reads index and state. IDX_OK; IDXERR_PARAM: no index;
 * IDXERR_NOINDEX; IDXERR_NOTEMPTY: it has child indexes; IDXERR_PROTECTED: the index is protected, or one of its
 * images, and the images before that one are gone then. IDX_ROOT is never removed: IDXERR_NOTEMPTY while there is any
 * index, as there is unless the presets were removed; then IDXERR_PROTECTED, and IDXERR_PARAM with IDXSTATE_FORCE or
 * when the root's protection was taken away.
 */
IDXSTATUS IDXRemoveIndex(IDXITEM* item);

/* Reads index; writes name and attribute, whatever the operation. IDX_OK; IDXERR_PARAM: no index; IDXERR_NOINDEX. */
IDXSTATUS IDXSearchIndex(IDXITEM* item);

/*
 * Begins a walk over all indexes but the root, parents before children. Under IDXOP_CONDITION it reads index, and
 * walks that index and all below it. Under IDXOP_GETINFO it writes name, index and attribute of the first. Returns as
 * IDXFindFirstImage does, with IDXERR_NOINDEX if there is none.
 */
IDXFIND IDXFindFirstIndex(IDXITEM* item, IDXSTATUS* status);

/*
 * Finds the next index, and writes it as IDXFindFirstIndex does. IDX_OK; IDXERR_NOINDEX: the end; IDXERR_PARAM: a
 * null handle. REQUIRES: the handle is one of IDXFindFirstIndex.
 */
IDXSTATUS IDXFindNextIndex(IDXFIND find, IDXITEM* item);

/*
 * Renames `count` indexes, protected or not: names[i] becomes the display name of numbers[i]. A name may be empty. In
 * place of a name that cannot be converted, or a number out of range, that of the entry before is used; in the first
 * entry the empty name, or the root. IDX_OK; IDXERR_PARAM: an array is null, or an index does not exist; the others
 * are renamed.
 */
IDXSTATUS IDXSetPresetIndexName(const IDXSTR* names, const int32_t* numbers, int32_t count);

/*
 * ---- Files
 *
 * Each call takes the name of a file in the base directory: an XML property list that holds the indexes, the images,
 * or both, each as a text of one record a line, and any other entries of an application. A name that is empty or
 * cannot be converted names the directory itself, which is not such a file.
 */

/*
 * Adds the indexes of the file to the catalogue; those that are there already are left as they are. To be called
 * before IDXLoadImageFile. IDX_OK; IDXERR_FAILED: the file cannot be read, or is not a catalogue file; IDXERR_PARAM:
 * null; IDXERR_NODATA: no such file, or it holds no indexes; IDXERR_EMPTY; IDXERR_VERSION; IDXERR_MEMORY: a part may
 * have been added. After a failure other than IDXERR_NODATA the file holds more than the catalogue: do not overwrite
 * it. An entry that the catalogue refuses, or that cannot be allocated, is skipped, with IDX_OK.
 */
IDXSTATUS IDXLoadIndexFile(IDXSTR name);

/*
 * Adds the images of the file to the catalogue. Skips images whose own file does not exist, whose index is not in the
 * catalogue, or which are there already. Statuses as IDXLoadIndexFile, but IDXERR_VERSION in place of IDXERR_EMPTY.
 */
IDXSTATUS IDXLoadImageFile(IDXSTR name);

/*
 * Writes the indexes to the file, which is created or replaced; other entries of the file are kept. After any failure
 * the old file is whole, unless the folder takes no new file: then the file is written in place. Indexes with all
 * three protections, such as the presets, are left out; if a child of such an index is written, a load makes the
 * index with the child's name and attribute. An empty name, or one with a line feed, is not loaded again and spoils
 * the record behind it. IDX_OK; IDXERR_FAILED: the file exists and is not a catalogue file, or cannot be written;
 * IDXERR_PARAM: null; IDXERR_MEMORY.
 */
IDXSTATUS IDXWriteIndexFile(IDXSTR name);

/* Writes the images in the same way. A path with a line feed is not loaded again. */
IDXSTATUS IDXWriteImageFile(IDXSTR name);

/* ---- Scenes */

/*
 * Decides what the picture shows and writes the number of the preset index that it belongs in to `presetIndex`, -1 on
 * failure. A picture without pixels is decided by its hints and sizes alone, or stays undecided (-1, IDX_OK).
 *   IDX_OK             decided, or nothing to decide by
 *   IDXERR_FAILED      the library is not initialised
 *   IDXERR_PARAM       `data` is null; nothing is written
 *   IDXERR_MEMORY      a copy of the pixels could not be allocated
 *   IDXERR_DETECTOR    the recognizer is needed and its parameter resource is missing
 *   IDXERR_IMAGESIZE   width or height is above 4096 pixels, and neither below 50
 *   IDXERR_RECOGNIZER + 1 to 255, IDXERR_FACES + 1 to 255: failures of the two engines
 * Any thread may call it; one detection runs at a time, beside the other calls.
 */
IDXSTATUS IDXDetectScene(IDXDSDATA* data);

#ifdef __cplusplus
}
#endif
#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#endif /* CATALOGCORE_H_ */
