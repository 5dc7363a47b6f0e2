/*
 * CatalogCore: a catalogue of image files in memory, for C and C++.
 *
 * An image is identified by the full path of its file. It is filed under one index, a category in a tree of
 * categories, and under the folder of its file. The tree of indexes begins with ten presets. The catalogue is loaded
 * from, and written to, two files below a base directory.
 *
 * Threads: any thread may make any call at any time; the library locks as needed. There are four exceptions.
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
 * Case: paths that differ only in the case of ASCII letters are two paths, except about one such pair in 2000. Two such
 * paths count as one if they fall into the same of the catalogue's 1987 hash buckets. With /p/summer78.jpg in the
 * catalogue, /p/SUMMER78.JPG can then not be added (IDXERR_IMAGEEXISTS), and removing it removes /p/summer78.jpg. The
 * same holds for folders. Walks return the path that was added first.
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
 * neither read nor written, except an index of -1 in IDXChangeImage. The other bits are reserved: leave them 0. They
 * are ignored now, and may get a meaning in a later version.
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
  IDXPRESET_DOCUMENT_CARD = 2010000,  /* documents of the size of a card */
  IDXPRESET_DOCUMENT_POST = 2020000,  /* of a postcard or of 4 x 6 inches */
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
 * - A step returns the next entry at the time of the step. Removed entries are not returned. Entries that were added or
 *   moved to a later position are returned, so a walk may return a moved image twice.
 * - If the image returned last was removed or moved since, the walk continues with the entry that followed the image at
 *   that time. Entries added between the two afterwards are skipped.
 * - The walk ends if its current index is removed. In a walk over indexes, that is the index returned last; in a walk
 *   over images without a path, it is the index of the image returned last.
 *
 * A removed or moved entry takes memory until all walks that were open at that time are closed, or until IDXInitialize
 * or IDXUninitialize.
 */
typedef struct IDXFINDHANDLE* IDXFIND;

/*
 * A picture, and what the application knows of it. Byte b of the pixel in column x of row y is at pixels + y * rowBytes
 * + x * (bitsPerPixel / 8) + b; the picture is rowBytes * height bytes.
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
  uint16_t photoKind;   /* 1, 2, 3: photograph, and 1 and 3: faces are not detected; else: no effect */
  int32_t presetIndex;  /* output: the number of the preset index for the picture, or -1 */
} IDXDSDATA;

#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif
#ifdef __cplusplus
extern "C" {
#endif

/* ---- Beginning and end */

/*
 * Makes an empty catalogue with the ten presets, each named "idx" and its number, and no base directory. An existing
 * catalogue is dropped first. IDX_OK: the root or a preset is missing if it could not be allocated; IDXERR_MEMORY:
 * nothing is initialised; IDXERR_DETECTOR: the catalogue works, and scene detection works for pictures that do not
 * need the recognizer.
 */
IDXSTATUS IDXInitialize(void);

/*
 * Drops the catalogue. Returns IDX_OK, also without a catalogue. IDXInitialize and IDXUninitialize end all open walks;
 * their handles must still be closed.
 */
IDXSTATUS IDXUninitialize(void);

/*
 * Sets the directory of the catalogue's files. A "/" is always appended. IDX_OK; IDXERR_PARAM: null; IDXERR_FAILED or
 * IDXERR_MEMORY: the string is invalid (see IDXSTR). After IDXERR_MEMORY no directory is set.
 */
IDXSTATUS IDXSetFilePath(IDXSTR path);

/* ---- Images */

/*
 * Files an image; its file need not exist. Reads name, index, and attribute (0 if not marked). IDX_OK; IDXERR_PARAM:
 * a field is missing, the name holds no "/", the name is beyond the limits, its folder holds "//" or ends in "/", the
 * index is out of range or the root; IDXERR_IMAGEEXISTS; IDXERR_NOINDEX; IDXERR_MEMORY: the image's folder may have
 * been added. Or folders above the image may have been removed with their images: the nearest one that existed, and
 * then its parents upward, as long as each has no child folder left and no protected image.
 */
IDXSTATUS IDXAddImage(IDXITEM* item);

/*
 * Moves an image to another index (if marked), then sets its attribute (if marked). If setting the attribute fails,
 * the image stays moved. With the index marked, an image that is not in the catalogue is added as by IDXAddImage. With
 * neither marked the call does nothing. Warning: an index of -1, marked or not, removes the image as by
 * IDXRemoveImage, and -1 is also what IDXDetectScene writes for an undecided picture. Reads name, index, attribute,
 * state. IDX_OK; IDXERR_PARAM: as for IDXAddImage; IDXERR_PROTECTED; IDXERR_NOINDEX; IDXERR_NOIMAGE: no such image,
 * and only the attribute is marked; IDXERR_IMAGEEXISTS: another thread added the image meanwhile; IDXERR_MEMORY: an
 * image that was to be moved may have been removed. Add it again with its attribute marked.
 */
IDXSTATUS IDXChangeImage(IDXITEM* item);

/* Reads name and state. IDX_OK; IDXERR_PARAM: no name; IDXERR_NOIMAGE; IDXERR_PROTECTED. */
IDXSTATUS IDXRemoveImage(IDXITEM* item);

/* Reads name; writes index and attribute, whatever the operation. IDX_OK; IDXERR_PARAM: no name; IDXERR_NOIMAGE. */
IDXSTATUS IDXSearchImage(IDXITEM* item);

/*
 * Begins a walk over all images, or, with IDXOP_CONDITION, over those that match index and path. A marked index
 * restricts the walk to the images of that index and of the indexes below it. IDX_ROOT restricts nothing: mark index
 * with IDX_ROOT to walk all indexes and have the index of each image written. A marked path restricts the walk to the
 * images in that folder and in the folders below it. One "/" at the end of the path is ignored, and "." restricts
 * nothing. The path "/" means all folders except those whose path begins with "/Volumes" in exactly these letters, such
 * as "/Volumes2". To walk one of these folders, give its path.
 *
 * With IDXOP_GETINFO it writes name, index and attribute of the first image. Returns the handle, to be closed with
 * IDXCloseFind, and stores IDX_OK in `*status`. On failure returns null and stores IDXERR_NOIMAGE, IDXERR_MEMORY, or
 * the status of the invalid field. `status` may be null.
 */
IDXFIND IDXFindFirstImage(IDXITEM* item, IDXSTATUS* status);

/*
 * Finds the next image and writes it as IDXFindFirstImage does. IDX_OK; IDXERR_NOIMAGE: the end; IDXERR_PARAM: a null
 * handle. REQUIRES: IDXFindFirstImage returned the handle.
 */
IDXSTATUS IDXFindNextImage(IDXFIND find, IDXITEM* item);

/* Ends a walk over images or indexes and frees its handle, also after IDXUninitialize. Null is allowed. IDX_OK. */
IDXSTATUS IDXCloseFind(IDXFIND find);

/* ---- Indexes */

/*
 * Adds an index with this name under the parent that `index` names, at the lowest free position from 10 to 29. Reads
 * index, name, and attribute (0 if not marked). With IDXOP_GETINFO writes the new number to index, also on
 * IDXERR_MEMORY. IDX_OK; IDXERR_PARAM: a field is missing, the parent is out of range or on the fourth level;
 * IDXERR_NOINDEX: no such parent; IDXERR_INDEXEXISTS: the parent has a child whose name has the same bytes, and its
 * number is written with IDXOP_GETINFO; IDXERR_INDEXFULL; IDXERR_MEMORY: a parent without children may have been
 * removed with its images if neither the parent nor an image is protected, and likewise the indexes above it.
 */
IDXSTATUS IDXAddIndex(IDXITEM* item);

/*
 * Changes the display name (if marked), then the attribute (if marked). Reads index, name, attribute, state. The status
 * of the second step replaces that of the first: with both marked, the call returns IDX_OK for an index that may not be
 * renamed, and changes only its attribute. To learn whether the name was changed, mark name alone. If the name cannot
 * be read, nothing is changed. With neither marked the call returns IDX_OK, also for an index that does not exist.
 * IDX_OK; IDXERR_PARAM: no index, or a marked name without a variable; IDXERR_NOINDEX; IDXERR_PROTECTED; IDXERR_MEMORY;
 * the status of an invalid name.
 */
IDXSTATUS IDXChangeIndex(IDXITEM* item);

/*
 * Removes an index, and its images from the catalogue. Reads index and state. IDX_OK; IDXERR_PARAM: no index;
 * IDXERR_NOINDEX; IDXERR_NOTEMPTY: the index has child indexes; IDXERR_PROTECTED: the index or one of its images is
 * protected, and the images before the protected one have been removed. IDX_ROOT is never removed. The call then
 * returns IDXERR_NOTEMPTY while any index exists, presets included; otherwise IDXERR_PROTECTED, or IDXERR_PARAM with
 * IDXSTATE_FORCE or if the root is no longer protected.
 */
IDXSTATUS IDXRemoveIndex(IDXITEM* item);

/* Reads index; writes name and attribute, whatever the operation. IDX_OK; IDXERR_PARAM: no index; IDXERR_NOINDEX. */
IDXSTATUS IDXSearchIndex(IDXITEM* item);

/*
 * Begins a walk over all indexes except the root, parents before children. With IDXOP_CONDITION it reads index, and
 * walks that index and all indexes below it. With IDXOP_GETINFO it writes name, index and attribute of the first index.
 * Returns as IDXFindFirstImage does, with IDXERR_NOINDEX if nothing is found.
 */
IDXFIND IDXFindFirstIndex(IDXITEM* item, IDXSTATUS* status);

/*
 * Finds the next index and writes it as IDXFindFirstIndex does. IDX_OK; IDXERR_NOINDEX: the end; IDXERR_PARAM: a null
 * handle. REQUIRES: IDXFindFirstIndex returned the handle.
 */
IDXSTATUS IDXFindNextIndex(IDXFIND find, IDXITEM* item);

/*
 * Renames `count` indexes, protected or not: names[i] becomes the display name of numbers[i]. A name may be empty. A
 * name that cannot be converted is replaced by that of the previous entry, in the first entry by the empty name. A
 * number out of range is replaced by that of the previous entry, in the first entry by the root. IDX_OK; IDXERR_PARAM:
 * an array is null, or an index does not exist; the other indexes are renamed.
 */
IDXSTATUS IDXSetPresetIndexName(const IDXSTR* names, const int32_t* numbers, int32_t count);

/*
 * ---- Files
 *
 * Each call takes the name of a file in the base directory. The file is an XML property list with the indexes, the
 * images, or both, each as a text with one record a line, and with any other entries of applications. A name that is
 * empty or cannot be converted names the directory itself, which cannot be read or written as a file.
 */

/*
 * Adds the indexes of the file to the catalogue. Indexes that exist already do not change. Call it before
 * IDXLoadImageFile. IDX_OK; IDXERR_FAILED: the file cannot be read, or is not a catalogue file; IDXERR_PARAM:
 * null; IDXERR_NODATA: no such file, or it holds no indexes; IDXERR_EMPTY; IDXERR_VERSION; IDXERR_MEMORY: a part may
 * have been added. After a failure other than IDXERR_NODATA the file holds more than the catalogue: do not overwrite
 * it. A record that is invalid or cannot be allocated is skipped with IDX_OK, and the next write loses it.
 */
IDXSTATUS IDXLoadIndexFile(IDXSTR name);

/*
 * Adds the images of the file to the catalogue. Skips images whose file or index does not exist, and images that are in
 * the catalogue already. So the images of a disk that is not mounted are skipped with IDX_OK, and the next write loses
 * them. Statuses as for IDXLoadIndexFile, with IDXERR_VERSION in place of IDXERR_EMPTY.
 */
IDXSTATUS IDXLoadImageFile(IDXSTR name);

/*
 * Writes the indexes to the file, which is created or replaced. Other entries of the file are kept. After any failure
 * the old file is intact, unless its folder does not allow new files: then the file is overwritten in place. Indexes
 * with all three protections, such as the presets, are not written. If a child of such an index is written and the
 * index does not exist, loading creates the index with the name and attribute of the child. An index whose name is
 * empty or has a line feed is lost at the next load, together with a part of the record after it; the write still
 * returns IDX_OK. IDX_OK; IDXERR_FAILED: the file
 * exists and is not a catalogue file, or cannot be written; IDXERR_PARAM: null; IDXERR_MEMORY.
 */
IDXSTATUS IDXWriteIndexFile(IDXSTR name);

/* Writes the images in the same way. An image whose path has a line feed is lost at the next load. */
IDXSTATUS IDXWriteImageFile(IDXSTR name);

/* ---- Scenes */

/*
 * Decides what the picture shows and writes the number of the preset index for it to `presetIndex`, or -1 on failure. A
 * picture without pixels is decided by its hints and sizes alone, or stays undecided (-1 with IDX_OK).
 *   IDX_OK             decided, or undecided (-1)
 *   IDXERR_FAILED      the library is not initialised
 *   IDXERR_PARAM       `data` is null; nothing is written
 *   IDXERR_MEMORY      a copy of the pixels could not be allocated, or rowBytes * height is negative or does not fit in
 *                      32 bits
 *   IDXERR_DETECTOR    the recognizer is needed and its parameter resource is missing
 *   IDXERR_IMAGESIZE   width or height is above 4096 pixels, and neither below 50
 *   IDXERR_RECOGNIZER + 1 to 255, IDXERR_FACES + 1 to 255: failures of the two engines
 * Detections run one at a time. Other calls do not wait for them.
 */
IDXSTATUS IDXDetectScene(IDXDSDATA* data);

#ifdef __cplusplus
}
#endif
#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#endif /* CATALOGCORE_H_ */
