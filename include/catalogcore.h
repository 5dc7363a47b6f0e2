/*
 * CatalogCore: a catalogue of image files in memory, for C and C++.
 *
 * Words
 *
 *     image      an image file, identified by its full path. It is filed under one index and under its folder.
 *     index      a category. The indexes form a tree, and an index number such as 1100000 names an index.
 *     preset     one of the ten indexes that every catalogue has from the start.
 *     entry      an image or an index.
 *     record     an IDXITEM: what a call reads about an entry, and what the call writes about it.
 *     marked     a field of a record is marked if its bit is set in IDXITEM.mask.
 *     walk       an iteration over images or indexes: a find-first call, find-next calls, and IDXCloseFind.
 *     handle     the position of a walk, an IDXFIND.
 *
 * A process has one catalogue. It is loaded from, and written to, two files in a base directory.
 *
 * Threads: any thread may make any call at any time; the library locks as needed. There are four exceptions.
 * IDXInitialize, IDXUninitialize and IDXSetFilePath must not overlap any other call. IDXCloseFind must not overlap
 * another call on its handle. A handle and a record belong to one thread at a time. Two calls must not write the same
 * file at once.
 *
 * Arguments: a call that takes a record returns IDXERR_PARAM for a null pointer. Without a catalogue (before
 * IDXInitialize, and after IDXUninitialize) the calls on images, indexes, files and scenes return IDXERR_FAILED. Only a
 * find-next call then returns the status that ends a walk.
 *
 * Failures: no call throws. A call that fails leaves the catalogue unchanged, unless the comment of the call says
 * otherwise, and may be repeated. Each comment lists the statuses of its call; a status without an explanation means
 * what IDXSTATUS says. Any call may also return IDXERR_FAILED or IDXERR_MEMORY for a reason that is named here or at
 * IDXSTR.
 *
 * The status of a failed allocation depends on what the memory was for. IDXInitialize, IDXSetPresetIndexName and the
 * load calls have exceptions, which their comments name.
 *
 *     a string of the application, to be read        IDXERR_FAILED
 *     reading or writing a file                      IDXERR_FAILED
 *     the recognizer's parameters, in IDXInitialize  IDXERR_DETECTOR
 *     inside the recognizer or the face detector     IDXERR_RECOGNIZER or IDXERR_FACES, plus a code
 *     a string for the application                   IDX_OK; the application's variable keeps its value
 *     anything else                                  IDXERR_MEMORY
 *
 * Limits: the path of an image has at most 4096 bytes of UTF-8, and at most 512 folders. The tree of indexes has four
 * levels below its root. A loaded file may contain indexes on up to 64 levels, but the number that a call writes
 * for an index below the fourth level does not identify it: the number may be out of range, or that of another index.
 *
 * Case: paths that differ only in the case of ASCII letters are two paths. The exception is about one such pair in
 * 2000, whose hashes in the catalogue happen to be equal: the two paths then count as one. /p/summer78.jpg and
 * /p/SUMMER78.JPG are such a pair. If the first is in the catalogue, the second cannot be added (IDXERR_IMAGEEXISTS),
 * and removing the second removes the first. The same holds for folders. Walks return the path that was added first.
 *
 * Folders: a folder stays in the catalogue after its last image was removed, until IDXInitialize or IDXUninitialize.
 * The folder takes about 250 bytes in addition to its path, and keeps its place in the order of walks.
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
 * A text: a pointer to a string variable of the application. The string is a CoreFoundation string, which a C program
 * creates from UTF-8, and releases:
 *
 *     CFStringRef path = CFStringCreateWithCString(NULL, "/srv/scans/letter.png", kCFStringEncodingUTF8);
 *     item.name = &path;   (after the call: CFRelease(path);)
 *
 * On input the library reads the string that the variable holds, and never releases the string. A call that needs a
 * text returns:
 *
 *     the pointer is null                            IDXERR_PARAM
 *     the variable is NULL                           IDXERR_FAILED
 *     the string cannot be converted to UTF-8        IDXERR_FAILED
 *     the string is empty                            IDXERR_MEMORY
 *
 * The file calls and IDXSetPresetIndexName differ, as their comments say.
 *
 * On output the library stores a new string in the variable. The application owns the new string: it reads the text
 * with CFStringGetCString and releases the string with CFRelease. The library does not release the string that the
 * variable held before. The variable keeps its value on allocation failure, and if the text is not valid UTF-8
 * (only a loaded file can contain such text). To notice this, set the variable to NULL before the call.
 */
typedef CFStringRef* IDXSTR;

/* What a call returns: one of the values below. */
typedef uint32_t IDXSTATUS;

enum {
  IDX_OK = 0,              /* success */
  IDXERR_FAILED = 1,       /* no catalogue; a string is missing or invalid; a file cannot be read or written */
  IDXERR_PARAM = 2,        /* an argument or field is missing or invalid */
  IDXERR_NODATA = 3,       /* the catalogue file is missing, or holds none of the entries to load */
  IDXERR_EMPTY = 4,        /* the catalogue file's text has no line */
  IDXERR_VERSION = 6,      /* the catalogue file's text has another version */
  IDXERR_NOIMAGE = 7,      /* no such image; the end of a walk over images */
  IDXERR_NOINDEX = 8,      /* no such index; the end of a walk over indexes */
  IDXERR_IMAGEEXISTS = 9,  /* the image is in the catalogue already */
  IDXERR_INDEXEXISTS = 10, /* the index is in the catalogue already, or its parent has a child of this name */
  IDXERR_INDEXFULL = 11,   /* the parent has no number left for another child */
  IDXERR_MEMORY = 12,      /* memory could not be allocated; or a string of the application is empty */
  IDXERR_NOTEMPTY = 13,    /* the index still has child indexes */
  IDXERR_PROTECTED = 14,   /* the entry's attribute forbids the change, and IDXSTATE_FORCE is not set */
  IDXERR_DETECTOR = 16,    /* the recognizer's parameters (brennparam.dat) could not be read */
  IDXERR_IMAGESIZE = 18,   /* the picture is too large for scene detection */
  IDXERR_RECOGNIZER = 256, /* plus a code of the document-type recognizer, 1 to 255 */
  IDXERR_FACES = 512       /* plus a code of the face detector, 1 to 255 */
};

/* Bits of IDXITEM.operation. The other bits are reserved: leave them 0. */
enum {
  IDXOP_GETINFO = 1,  /* write the fields of the entry that was found or added; each call says which fields */
  IDXOP_CONDITION = 2 /* find-first calls: restrict the walk */
};

/*
 * Bits of IDXITEM.mask. A field is marked if its bit is set. A call reads only marked fields and writes only marked
 * fields. The comment of a call lists the fields that the call reads, and the fields that it writes. A call that does
 * both, such as IDXFindFirstImage, reads the field before it writes the field. A string field whose pointer is null is
 * not written. One field is read unmarked: an index of -1 in IDXChangeImage. The other bits are reserved: leave them
 * 0. They are ignored now, and may get a meaning in a later version.
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
 * Index numbers. A number holds the position of the index on each of four levels, from the top down, as two decimal
 * digits a level: 1100000 (01 10 00 00) is child 10 of index 1000000. So numbers are from 1000000 to 99999999. Presets
 * have the positions 1 to 9, added indexes 10 to 29.
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
 * What a call reads about an image or an index, and what it writes. The library keeps no pointer to the record, nor to
 * the string variables.
 */
typedef struct IDXITEM {
  uint8_t operation; /* IDXOP_...; never written */
  IDXSTR name;       /* of an image its full path, of an index its display name */
  IDXSTR path;       /* a folder; read by IDXFindFirstImage only; never written */
  int32_t index;     /* an index number */
  uint8_t attribute; /* IDXATTR_... and bits of the application */
  uint32_t mask;     /* IDXMASK_...; never written */
  uint8_t state;     /* IDXSTATE_...; never written */
} IDXITEM;

/*
 * The handle of a walk. Any thread may change the catalogue between two steps of the walk:
 *
 * - A step returns the next entry at the time of the step. Removed entries are not returned. Entries that were added or
 *   moved to a later position are returned, so a walk may return a moved image twice.
 * - If the image returned last was removed or moved since, the walk continues with the entry that followed the image at
 *   that time. Entries that were added between these two afterwards are skipped.
 * - The walk ends if its current index is removed. In a walk over indexes, that is the index returned last; in a walk
 *   over images without a path, it is the index of the image returned last.
 *
 * A removed or moved entry takes memory until all walks that were open at that time are closed, or until IDXInitialize
 * or IDXUninitialize.
 */
typedef struct IDXFINDHANDLE* IDXFIND;

/*
 * A picture, and what the application knows of it. The pixels are rowBytes * height bytes. Byte b of the pixel in
 * column x of row y is at pixels + y * rowBytes + x * (bitsPerPixel / 8) + b.
 */
typedef struct IDXDSDATA {
  const void* pixels;   /* owned by the application, and only read; may be null */
  int32_t width;        /* pixels in a row */
  int32_t height;       /* rows */
  int32_t rowBytes;     /* bytes from one row to the next */
  int32_t bitsPerPixel; /* 8 or 16: one sample a pixel; 24 or 48: three */
  int32_t resolution;   /* dots per inch; 0 or less: unknown */
  int32_t fixedScene;   /* 1: a document, whatever it shows; nothing is analysed */
  int32_t typeHint;     /* 1: document; 2: photograph; else: not known */
  uint16_t photoHint;   /* 3: photograph; else: no effect */
  uint16_t photoKind;   /* 1, 2 or 3: photograph; 1 or 3: faces are not detected; else: no effect */
  int32_t presetIndex;  /* output: the number of the preset for the picture, or -1 */
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
 * catalogue is dropped first.
 *
 *     IDX_OK             the root or a preset is missing if it could not be allocated
 *     IDXERR_MEMORY      there is no catalogue
 *     IDXERR_DETECTOR    the catalogue works, and so does scene detection for pictures that do not need the recognizer
 */
IDXSTATUS IDXInitialize(void);

/*
 * Drops the catalogue. Returns IDX_OK, also without a catalogue. IDXInitialize and IDXUninitialize end all walks; the
 * handles must still be closed.
 */
IDXSTATUS IDXUninitialize(void);

/*
 * Sets the base directory: the directory of the catalogue's files. A "/" is always appended. Without a base directory,
 * the files are in the working directory of the process. IDX_OK; IDXERR_PARAM; IDXERR_FAILED; IDXERR_MEMORY: no base
 * directory is set.
 */
IDXSTATUS IDXSetFilePath(IDXSTR path);

/* ---- Images */

/*
 * Files an image under an index; the image's file need not exist. Reads `name`, `index`, and `attribute` (0 if not
 * marked).
 *
 *     IDX_OK
 *     IDXERR_PARAM         `name` or `index` is missing, the path has no "/" or is beyond the limits, the path of its
 *                          folder contains "//" or ends in "/", the index number is out of range or IDX_ROOT
 *     IDXERR_IMAGEEXISTS
 *     IDXERR_NOINDEX
 *     IDXERR_MEMORY        the image's folder may have been added. If it could not be added, the nearest existing
 *                          folder above it may have been removed, then the parent of that folder, and so on, each in
 *                          the way in which IDXRemoveIndex removes an index without IDXSTATE_FORCE
 */
IDXSTATUS IDXAddImage(IDXITEM* item);

/*
 * Moves an image to another index (if `index` is marked), then sets its attribute (if `attribute` is marked). With
 * `index` marked, an image that is not in the catalogue is added as IDXAddImage does. With neither marked the call does
 * nothing. Reads `name`, `index`, `attribute` and `state`.
 *
 * Warning: if `index` is -1, marked or not, the call removes the image as IDXRemoveImage does. IDXDetectScene writes -1
 * for an undecided picture: file such a picture under another number.
 *
 *     IDX_OK
 *     IDXERR_PARAM         as for IDXAddImage
 *     IDXERR_PROTECTED
 *     IDXERR_NOINDEX
 *     IDXERR_NOIMAGE       no such image, and `index` is not marked; or another thread removed the image after the move
 *     IDXERR_IMAGEEXISTS   another thread added the image meanwhile
 *     IDXERR_MEMORY        an image that was to be moved may have been removed: add it again with its attribute
 */
IDXSTATUS IDXChangeImage(IDXITEM* item);

/*
 * Removes an image from the catalogue, not its file. Reads `name` and `state`. IDX_OK; IDXERR_PARAM; IDXERR_NOIMAGE;
 * IDXERR_PROTECTED.
 */
IDXSTATUS IDXRemoveImage(IDXITEM* item);

/*
 * Finds an image by its path. Reads `name`; writes `index` and `attribute`, also without IDXOP_GETINFO. IDX_OK;
 * IDXERR_PARAM; IDXERR_NOIMAGE.
 */
IDXSTATUS IDXSearchImage(IDXITEM* item);

/*
 * Begins a walk over all images, or, with IDXOP_CONDITION, over the images that match `index` and `path`:
 *
 * - A marked `index` restricts the walk to the images of that index and of the indexes below it. IDX_ROOT restricts
 *   nothing: mark `index` with IDX_ROOT to walk all indexes and have the index of each image written.
 * - A marked `path` restricts the walk to the images in that folder and in the folders below it. One "/" at the end of
 *   the path is ignored, and "." restricts nothing. The path "/" means all folders except those whose path begins with
 *   "/Volumes" in exactly these letters, such as "/Volumes2". To walk one of these folders, give its path.
 *
 * With IDXOP_GETINFO the call writes `name`, `index` and `attribute` of the first image. Returns the handle, to be
 * closed with IDXCloseFind, and stores IDX_OK in `*status`. On failure returns null and stores IDXERR_NOIMAGE (no image
 * matches, or the index or folder does not exist), IDXERR_MEMORY, or the status of an invalid field. `status` may be
 * null.
 */
IDXFIND IDXFindFirstImage(IDXITEM* item, IDXSTATUS* status);

/*
 * Finds the next image. With IDXOP_GETINFO writes `name`, `index` and `attribute`. The record need not be that of the
 * find-first call. IDX_OK; IDXERR_NOIMAGE: the end; IDXERR_PARAM: a null handle. REQUIRES: IDXFindFirstImage returned
 * the handle.
 */
IDXSTATUS IDXFindNextImage(IDXFIND find, IDXITEM* item);

/* Ends a walk and frees its handle, also after IDXUninitialize. Null is allowed. Returns IDX_OK. */
IDXSTATUS IDXCloseFind(IDXFIND find);

/* ---- Indexes */

/*
 * Adds an index with this name under the parent whose number is in `index`, at the lowest free position from 10 to 29.
 * Reads `index`, `name`, and `attribute` (0 if not marked). With IDXOP_GETINFO writes the number of the new index to
 * `index`, also on IDXERR_MEMORY.
 *
 *     IDX_OK
 *     IDXERR_PARAM         `name` or `index` is missing, or the parent is out of range or on the fourth level
 *     IDXERR_NOINDEX       no such parent
 *     IDXERR_INDEXEXISTS   the parent has a child whose name has the same bytes. With IDXOP_GETINFO writes the number
 *                          of that child to `index`
 *     IDXERR_INDEXFULL
 *     IDXERR_MEMORY        the parent may have been removed, then its own parent, and so on, each in the way in which
 *                          IDXRemoveIndex removes an index without IDXSTATE_FORCE
 */
IDXSTATUS IDXAddIndex(IDXITEM* item);

/*
 * Changes the display name (if `name` is marked), then the attribute (if `attribute` is marked). Reads `index`, `name`,
 * `attribute` and `state`. With neither marked the call returns IDX_OK, also for an index that does not exist.
 *
 * The status of the second step replaces that of the first: with both marked, the call returns IDX_OK for an index that
 * may not be renamed, and changes only its attribute. To learn whether the name was changed, mark `name` alone. If the
 * name cannot be read (see IDXSTR), nothing is changed. IDX_OK; IDXERR_PARAM: `index` is missing or out of range;
 * IDXERR_NOINDEX; IDXERR_PROTECTED; IDXERR_MEMORY; the status of an invalid name.
 */
IDXSTATUS IDXChangeIndex(IDXITEM* item);

/*
 * Removes an index, and its images from the catalogue. Reads `index` and `state`.
 *
 *     IDX_OK
 *     IDXERR_PARAM         `index` is missing or out of range
 *     IDXERR_NOINDEX
 *     IDXERR_NOTEMPTY      the index has child indexes
 *     IDXERR_PROTECTED     the index is protected; or one of its images is, and the images that were added to the index
 *                          before this image have been removed
 *
 * The root is never removed: for IDX_ROOT the call returns IDXERR_NOTEMPTY as long as there is any index. Without
 * indexes it returns IDXERR_PROTECTED, or IDXERR_PARAM if IDXSTATE_FORCE is set or the root's attribute was changed.
 */
IDXSTATUS IDXRemoveIndex(IDXITEM* item);

/*
 * Finds an index by its number. Reads `index`; writes `name` and `attribute`, also without IDXOP_GETINFO. IDX_OK;
 * IDXERR_PARAM: `index` is missing or out of range; IDXERR_NOINDEX.
 */
IDXSTATUS IDXSearchIndex(IDXITEM* item);

/*
 * Begins a walk over all indexes except the root, parents before children. With IDXOP_CONDITION reads `index`, and
 * walks that index and all indexes below it; IDX_ROOT gives the root first. With IDXOP_GETINFO writes `name`, `index`
 * and `attribute` of the first index. Returns as IDXFindFirstImage does, with IDXERR_NOINDEX if nothing is found.
 */
IDXFIND IDXFindFirstIndex(IDXITEM* item, IDXSTATUS* status);

/*
 * Finds the next index. With IDXOP_GETINFO writes `name`, `index` and `attribute`. IDX_OK; IDXERR_NOINDEX: the end;
 * IDXERR_PARAM: a null handle. REQUIRES: IDXFindFirstIndex returned the handle.
 */
IDXSTATUS IDXFindNextIndex(IDXFIND find, IDXITEM* item);

/*
 * Renames `count` indexes, protected or not: names[i] becomes the display name of the index numbers[i]. A name may be
 * empty. A name that is null or cannot be converted (also on allocation failure) counts as the name that was used for
 * the element before; in the first element it counts as empty. A number out of range counts as the number that was used
 * for the element before; in the first element it counts as IDX_ROOT. IDX_OK; IDXERR_PARAM: an array is null, an index
 * does not exist, or a name could not be stored; the other indexes are renamed.
 */
IDXSTATUS IDXSetPresetIndexName(const IDXSTR* names, const int32_t* numbers, int32_t count);

/*
 * ---- Files
 *
 * Each call takes the name of a file in the base directory. The file is an XML property list (a dictionary of named
 * values) with the indexes, the images, or both. The value for either is a text with one line for each
 * index or image. Values under other names belong to applications, and writes keep them.
 *
 * If the string in the variable is missing, empty or cannot be converted, the call takes the base directory itself for
 * the file, and returns IDXERR_FAILED. If the directory does not exist, a load returns IDXERR_NODATA.
 */

/*
 * Adds the indexes of the file to the catalogue. Indexes that exist already do not change. Call it before
 * IDXLoadImageFile.
 *
 *     IDX_OK
 *     IDXERR_FAILED        the file cannot be read, or is not a catalogue file
 *     IDXERR_PARAM         `name` is null
 *     IDXERR_NODATA        no such file, or it holds no indexes
 *     IDXERR_EMPTY
 *     IDXERR_VERSION
 *     IDXERR_MEMORY        a part may have been added
 *
 * After a failure other than IDXERR_NODATA the file holds more than the catalogue: do not overwrite it. A line that is
 * invalid, or whose entry cannot be allocated, is skipped with IDX_OK, and the next write loses it.
 */
IDXSTATUS IDXLoadIndexFile(IDXSTR name);

/*
 * Adds the images of the file to the catalogue. Skips images whose file or index does not exist, and images that are in
 * the catalogue already. So the images of a disk that is not mounted are skipped with IDX_OK, and the next write loses
 * them. Statuses as for IDXLoadIndexFile; a text without a line gives IDXERR_VERSION instead of IDXERR_EMPTY.
 */
IDXSTATUS IDXLoadImageFile(IDXSTR name);

/*
 * Writes the indexes to the file, which is created or replaced. After any failure the old file is intact, unless its
 * folder does not allow new files: then the file is overwritten in place, and a failure can cut it short.
 *
 *     IDX_OK
 *     IDXERR_FAILED        the file exists and is not a catalogue file, or cannot be written
 *     IDXERR_PARAM         `name` is null
 *     IDXERR_MEMORY
 *
 * Indexes whose attribute is exactly the three protections, such as the presets, are not written. The indexes below
 * such an index are written. If the index does not exist at the next load, the load creates the index with the name and
 * attribute of the first index below it in the file.
 *
 * A name that is empty or has a line feed damages the file, and the write returns IDX_OK: the next load gives the index
 * a wrong name, and loses the index of the next line or gives it another number.
 */
IDXSTATUS IDXWriteIndexFile(IDXSTR name);

/*
 * Writes the images in the same way. An image whose path has a line feed is lost at the next load, and so is the image
 * of the next line.
 */
IDXSTATUS IDXWriteImageFile(IDXSTR name);

/* ---- Scenes */

/*
 * Decides what the picture shows, and writes the number of the preset for the picture to `presetIndex`. Writes -1 on
 * failure, and for an undecided picture. Without pixels (`pixels` is null, or rowBytes * height is 0 modulo 2^32) the
 * hints and the sizes decide alone, and the picture may stay undecided.
 *
 *     IDX_OK             decided or undecided
 *     IDXERR_FAILED      there is no catalogue
 *     IDXERR_PARAM       `data` is null; nothing is written
 *     IDXERR_MEMORY      a copy of the pixels could not be allocated, or rowBytes * height is negative or above
 *                        2^31 - 1
 *     IDXERR_DETECTOR    the recognizer is needed, and its parameters (brennparam.dat) are missing
 *     IDXERR_IMAGESIZE   a side is above 4096 pixels, and no side is below 50
 *     IDXERR_RECOGNIZER + 1 to 255    the document-type recognizer failed
 *     IDXERR_FACES + 1 to 255         the face detector failed
 *
 * Detections run one at a time. Other calls do not wait for a detection.
 */
IDXSTATUS IDXDetectScene(IDXDSDATA* data);

#ifdef __cplusplus
}
#endif
#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#endif /* CATALOGCORE_H_ */
