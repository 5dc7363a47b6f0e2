/*
 * CatalogCore: a catalogue of image files in memory, for C and C++.
 *
 * Words
 *
 *     image           a file in the catalogue, identified by its path. It is filed under one index and one folder.
 *     picture         what an image file shows. The library gets a picture as pixels in memory.
 *     index           a category. The indexes form a tree, and an index number such as 1100000 names an index.
 *     preset          one of the ten indexes that every catalogue has from the start.
 *     entry           an image or an index.
 *     attribute       eight bits of an entry. Three of them protect the entry; the others belong to the application.
 *     record          an IDXITEM: what a call reads about an entry, and what the call writes about it.
 *     marked          a field of a record is marked if its bit is set in IDXITEM.mask.
 *     walk            an iteration over images or indexes: a find-first call, find-next calls, and IDXCloseFind.
 *     handle          the position of a walk, an IDXFIND.
 *     scene           what a picture shows: a document of some size, or a photograph with or without faces.
 *     recognizer      decides whether a picture is a document or a photograph. Its parameters are in brennparam.dat.
 *     face detector   decides whether a photograph shows faces.
 *     engine          the recognizer or the face detector. IDXDetectScene uses both.
 *
 * A process has one catalogue. The application loads it from files in a base directory, and writes it to these files.
 *
 * Threads: any thread may make any call at any time; the library locks as needed. There are four exceptions.
 * IDXInitialize, IDXUninitialize and IDXSetFilePath must not overlap any other call. IDXCloseFind must not overlap
 * another call on its handle. A handle and a record belong to one thread at a time. Two calls must not write the same
 * file at once.
 *
 * Arguments: a call that takes a record returns IDXERR_PARAM for a null pointer.
 *
 * Without a catalogue, before IDXInitialize and after IDXUninitialize, a call returns IDXERR_FAILED. There are three
 * exceptions. A find-next call returns the status that ends a walk. IDXUninitialize and IDXCloseFind return IDX_OK.
 * IDXSetFilePath sets the base directory, but IDXInitialize then drops it.
 *
 * Failures: no call throws. A call that fails leaves the catalogue unchanged and may be repeated, unless the comment of
 * the call says otherwise. Each comment lists the statuses of its call. A status without an explanation means what
 * IDXSTATUS says. A call that reads a string may also return a status that IDXSTR lists. A call that allocates memory
 * may also return the status of a failed allocation. This status depends on what the memory was for:
 *
 *     converting a string of the application         IDXERR_FAILED
 *     reading, parsing or formatting a file          IDXERR_FAILED
 *     the recognizer's parameters, in IDXInitialize  IDXERR_DETECTOR
 *     inside the recognizer or the face detector     IDXERR_RECOGNIZER or IDXERR_FACES, plus a code
 *     a string for the application                   IDX_OK; the application's variable keeps its value
 *     anything else                                  IDXERR_MEMORY
 *
 * "Anything else" includes the library's copy of a converted string, and the text of a file before a write.
 * IDXInitialize, IDXSetPresetIndexName and the load calls have exceptions, which their comments name.
 *
 * Limits: the path of an image has at most 4096 bytes of UTF-8, and at most 512 folders. It contains a "/" and should
 * be absolute: a load looks for the file of a relative path in the working directory. A load skips a path of exactly
 * 4096 bytes, because the system can open only shorter paths. The tree of indexes has four levels below its root. A
 * loaded file may contain indexes on up to 64 levels. The number that a call writes for an index below the fourth level
 * does not identify the index: the number may be out of range, or that of another index.
 *
 * Case: two paths that differ only in the case of ASCII letters are normally two images. In about one of 2000 such
 * pairs, both paths have the same hash bucket, and the catalogue treats them as the same image. An example is
 * /p/summer78.jpg and /p/SUMMER78.JPG. If the first is in the catalogue, adding the second returns IDXERR_IMAGEEXISTS,
 * and removing the second removes the first. Walks return the path that was added. Folders are compared in the same
 * way: two folders with the same bucket are one folder. Each image in that folder keeps its own path.
 *
 * Folders: a folder stays in the catalogue after its last image was removed, until IDXInitialize or IDXUninitialize.
 * The folder takes about 250 bytes in addition to its path, and keeps its place in the order of walks. Only a failed
 * addition removes folders (see IDXAddImage).
 */
#ifndef CATALOGCORE_H_
#define CATALOGCORE_H_

#include <CoreFoundation/CoreFoundation.h>
#include <stdint.h>

/* The major version of this header. A program built with another major version must be built again. */
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
 * text returns one of these statuses if the text is invalid:
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
 * variable held before. In two cases no string is stored and the variable keeps its value: on allocation failure, and
 * if the text is not valid UTF-8 (only a loaded file can contain such text). To notice these cases, set the variable to
 * NULL before the call.
 */
typedef CFStringRef* IDXSTR;

/* What a call returns: one of the values below. A code of the engine is added to the last two. */
typedef uint32_t IDXSTATUS;

enum {
  IDX_OK = 0,              /* success */
  IDXERR_FAILED = 1,       /* no catalogue; a string is missing or invalid; a file cannot be read or written */
  IDXERR_PARAM = 2,        /* an argument or field is missing or invalid */
  IDXERR_NODATA = 3,       /* the catalogue file is missing, or has no list of the entries to load */
  IDXERR_EMPTY = 4,        /* the list of indexes in the file has no line, not even the version line */
  IDXERR_VERSION = 6,      /* the list in the file does not begin with the version line of this library */
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
 * Bits of IDXITEM.mask. They mark the fields `name`, `path`, `index` and `attribute`. A call reads only marked fields
 * and writes only marked fields. There is one exception: IDXChangeImage reads an `index` of -1 even if it is not
 * marked. The fields `operation`, `mask` and `state` have no bit: calls always read them and never write them.
 *
 * The comment of a call lists the fields that the call reads, and the fields that it writes. A call that does both,
 * such as IDXFindFirstImage, reads the field before it writes the field. A string field whose pointer is null is not
 * written.
 *
 * The other bits are reserved: leave them 0. They are ignored now, and may get a meaning in a later version.
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

/* Protection bits of the attribute of an entry. The other bits are kept and returned unchanged. */
enum {
  IDXATTR_NOMOVE = 1,   /* the image is not moved to another index */
  IDXATTR_NOREMOVE = 2, /* the entry is not removed */
  IDXATTR_NORENAME = 4  /* the index is not renamed */
};

/*
 * Index numbers. A number has two decimal digits for each of the four levels, from the top down. These two digits are
 * the position of the index on that level; 00 means that there is no further level, and the digits after 00 are
 * ignored. The first digit may be a 0 that is not written. For example, 1100000 is 01 10 00 00: the child at position
 * 10 of the index 1000000. Numbers are from 1000000 to 99999999. Presets have the positions 1 to 9, added indexes 10 to
 * 29.
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
 * What a call reads about an image or an index, and what it writes. The library keeps no pointer to the record or to
 * the string variables.
 */
typedef struct IDXITEM {
  uint8_t operation; /* IDXOP_...; never written */
  IDXSTR name;       /* of an image the full path of its file, of an index its display name */
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
 * - The image that was returned last may be removed or moved before the next step. The walk then continues with the
 *   image that followed it when it was removed or moved. Images that are inserted later before the following image are
 *   not returned.
 * - A walk over indexes ends if the index that was returned last is removed. A walk over images without a path ends if
 *   the index of the image that was returned last is removed.
 *
 * An entry that is removed or moved while walks are open stays in memory until all these walks are closed. Closing a
 * walk does not free the entries; later calls on the catalogue free up to 64 of them each. IDXInitialize and
 * IDXUninitialize free all of them.
 */
typedef struct IDXFINDHANDLE* IDXFIND;

/*
 * A picture, and what the application knows of the picture. The pixels are rowBytes * height bytes. Byte b of the pixel
 * in column x of row y is at pixels + y * rowBytes + x * (bitsPerPixel / 8) + b. `fixedScene`, `typeHint`, `photoHint`
 * and `photoKind` are hints; a value that is not listed has no effect. IDXDetectScene says in which order it follows
 * the hints.
 */
typedef struct IDXDSDATA {
  const void* pixels;   /* owned by the application, and only read; may be null */
  int32_t width;        /* pixels in a row */
  int32_t height;       /* rows */
  int32_t rowBytes;     /* bytes from one row to the next */
  int32_t bitsPerPixel; /* 8 or 16: one sample a pixel; 24 or 48: three */
  int32_t resolution;   /* dots per inch; 0 or less: unknown */
  int32_t fixedScene;   /* 1: a document that gets IDXPRESET_DOCUMENT_FIXED, whatever it shows */
  int32_t typeHint;     /* 1: document; 2: photograph */
  uint16_t photoHint;   /* 3: photograph */
  uint16_t photoKind;   /* 1 or 3: photograph, in which faces are not searched; 2: photograph */
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
 *     IDX_OK             the catalogue exists. If the root or presets could not be allocated, they are missing:
 *                        IDXSearchIndex returns IDXERR_NOINDEX for them
 *     IDXERR_MEMORY      an allocation failed. There is no catalogue
 *     IDXERR_DETECTOR    the recognizer's parameters could not be read. The catalogue exists. Scenes are detected in
 *                        pictures that do not need the recognizer
 */
IDXSTATUS IDXInitialize(void);

/*
 * Drops the catalogue. Returns IDX_OK, even without a catalogue. IDXInitialize and IDXUninitialize end all walks; the
 * handles must still be closed.
 */
IDXSTATUS IDXUninitialize(void);

/*
 * Sets the base directory: the directory of the catalogue's files. A "/" is always appended. Without a base directory,
 * the files are in the working directory of the process.
 *
 *     IDX_OK
 *     IDXERR_PARAM     `path` is null
 *     IDXERR_FAILED    the string is missing or cannot be converted. The base directory is unchanged
 *     IDXERR_MEMORY    an allocation failed, or the path is empty. Afterwards no base directory is set
 */
IDXSTATUS IDXSetFilePath(IDXSTR path);

/* ---- Images */

/*
 * Files an image under an index. The file of the image need not exist. Reads `name`, `index`, and `attribute` (0 if not
 * marked).
 *
 *     IDX_OK
 *     IDXERR_PARAM         - `name` or `index` is missing
 *                          - the path has no "/" or is beyond the limits
 *                          - the path of the folder contains "//" or ends in "/"
 *                          - the index number is out of range or IDX_ROOT
 *     IDXERR_IMAGEEXISTS
 *     IDXERR_NOINDEX
 *     IDXERR_MEMORY        an allocation failed. The image is not filed, but its folder may have been added. See below
 *
 * If the folder of the image could not be added, existing folders may have been removed from the catalogue. The nearest
 * existing folder above the new folder is removed first, then the parent of that folder, and so on. A folder is removed
 * only if it has no subfolder. The images of the folder are removed from the catalogue with it, up to the first image
 * with IDXATTR_NOREMOVE; such an image keeps the folder.
 */
IDXSTATUS IDXAddImage(IDXITEM* item);

/*
 * Moves an image to another index (if `index` is marked), then sets its attribute (if `attribute` is marked). With
 * `index` marked, an image that is not in the catalogue is added as IDXAddImage does. With neither marked the call does
 * nothing and returns IDX_OK, even if there is no such image. Reads `name`, `index`, `attribute` and `state`.
 *
 * Warning: if `index` is -1, the call removes the image as IDXRemoveImage does, even if `index` is not marked.
 * IDXDetectScene writes -1 for an undecided picture: file such an image under another number.
 *
 *     IDX_OK
 *     IDXERR_PARAM         as for IDXAddImage
 *     IDXERR_PROTECTED
 *     IDXERR_NOINDEX
 *     IDXERR_NOIMAGE       there is no such image, and `index` is not marked; or another thread removed the image after
 *                          this call moved it
 *     IDXERR_IMAGEEXISTS   there was no such image, and another thread added it before this call did
 *     IDXERR_MEMORY        an allocation failed. An image that was to be moved may have been removed: add it again with
 *                          its attribute. If the image was to be added: as for IDXAddImage
 */
IDXSTATUS IDXChangeImage(IDXITEM* item);

/*
 * Removes an image from the catalogue. Its file stays. Reads `name` and `state`. IDX_OK; IDXERR_PARAM: `name` is
 * missing; IDXERR_NOIMAGE; IDXERR_PROTECTED.
 */
IDXSTATUS IDXRemoveImage(IDXITEM* item);

/*
 * Finds an image by its path. Reads `name`; writes `index` and `attribute`, even without IDXOP_GETINFO. IDX_OK;
 * IDXERR_PARAM: `name` is missing; IDXERR_NOIMAGE.
 */
IDXSTATUS IDXSearchImage(IDXITEM* item);

/*
 * Begins a walk over all images. With IDXOP_CONDITION, begins a walk over the images that match `index` and `path`:
 *
 * - A marked `index` restricts the walk to the images of that index and of the indexes below it. IDX_ROOT restricts
 *   nothing: mark `index` with IDX_ROOT to walk all indexes and have the index of each image written.
 * - A marked `path` restricts the walk to the images in that folder and in the folders below it. One "/" at the end of
 *   the path is ignored, and "." restricts nothing. The path "/" means all folders except those whose path begins with
 *   "/Volumes" in exactly these letters, such as "/Volumes2". To walk one of these folders, give its path.
 *
 * With IDXOP_GETINFO the call writes `name`, `index` and `attribute` of the first image.
 *
 * Returns the handle, to be closed with IDXCloseFind, and stores IDX_OK in `*status`. On failure returns null, and
 * stores one of these statuses. `status` may be null.
 *
 *     IDXERR_NOIMAGE    no image matches, or the index or folder does not exist
 *     IDXERR_PARAM      a marked field is missing or out of range
 *     IDXERR_MEMORY
 */
IDXFIND IDXFindFirstImage(IDXITEM* item, IDXSTATUS* status);

/*
 * Finds the next image. With IDXOP_GETINFO writes `name`, `index` and `attribute`. The record need not be the record of
 * the find-first call. IDX_OK; IDXERR_NOIMAGE: the end of the walk; IDXERR_PARAM: `find` is null. REQUIRES:
 * IDXFindFirstImage returned the handle.
 */
IDXSTATUS IDXFindNextImage(IDXFIND find, IDXITEM* item);

/* Ends a walk and frees its handle, even after IDXUninitialize. Null is allowed. Returns IDX_OK. */
IDXSTATUS IDXCloseFind(IDXFIND find);

/* ---- Indexes */

/*
 * Adds an index with this name under the parent whose number is in `index`, at the lowest free position from 10 to 29.
 * Reads `index`, `name`, and `attribute` (0 if not marked). With IDXOP_GETINFO writes the number of the new index to
 * `index`.
 *
 *     IDX_OK
 *     IDXERR_PARAM         `name` or `index` is missing, or the parent is out of range or on the fourth level
 *     IDXERR_NOINDEX       no such parent
 *     IDXERR_INDEXEXISTS   the parent has a child whose name has the same bytes. With IDXOP_GETINFO writes the number
 *                          of that child to `index`
 *     IDXERR_INDEXFULL
 *     IDXERR_MEMORY        an allocation failed. The index is not added. With IDXOP_GETINFO its number may have been
 *                          written to `index` nevertheless
 *
 * After IDXERR_MEMORY the parent may have been removed, then the parent of the parent, and so on. An index is removed
 * only if it has no child and its attribute does not contain IDXATTR_NOREMOVE. The images of the index are removed from
 * the catalogue with it, up to the first image with IDXATTR_NOREMOVE; such an image keeps the index.
 */
IDXSTATUS IDXAddIndex(IDXITEM* item);

/*
 * Changes the display name (if `name` is marked), then the attribute (if `attribute` is marked). Reads `index`, `name`,
 * `attribute` and `state`. With neither marked the call returns IDX_OK, even for an index that does not exist.
 *
 * With both marked, the status is that of the second step. So the call returns IDX_OK for an index that may not be
 * renamed, and changes only its attribute. To learn whether the name was changed, mark `name` alone. If the string of
 * the name is invalid, nothing is changed.
 *
 *     IDX_OK
 *     IDXERR_PARAM        `index` is missing or out of range, or `name` is marked and its pointer is null
 *     IDXERR_NOINDEX
 *     IDXERR_PROTECTED
 *     IDXERR_MEMORY
 */
IDXSTATUS IDXChangeIndex(IDXITEM* item);

/*
 * Removes an index, and its images from the catalogue. Reads `index` and `state`.
 *
 *     IDX_OK
 *     IDXERR_PARAM         `index` is missing or out of range
 *     IDXERR_NOINDEX
 *     IDXERR_NOTEMPTY      the index has child indexes
 *     IDXERR_PROTECTED     the index or one of its images has IDXATTR_NOREMOVE. If it is an image, the images that were
 *                          added to the index before this image have been removed
 *
 * The root is never removed. For IDX_ROOT the call returns IDXERR_NOTEMPTY as long as there is any index. Without
 * indexes it returns IDXERR_PROTECTED, or IDXERR_PARAM if IDXSTATE_FORCE is set or the root has no IDXATTR_NOREMOVE.
 */
IDXSTATUS IDXRemoveIndex(IDXITEM* item);

/*
 * Finds an index by its number. Reads `index`; writes `name` and `attribute`, even without IDXOP_GETINFO. IDX_OK;
 * IDXERR_PARAM: `index` is missing or out of range; IDXERR_NOINDEX.
 */
IDXSTATUS IDXSearchIndex(IDXITEM* item);

/*
 * Begins a walk over all indexes except the root, parents before children. With IDXOP_CONDITION reads `index`, and
 * walks that index and all indexes below it; IDX_ROOT gives the root first. With IDXOP_GETINFO writes `name`, `index`
 * and `attribute` of the first index. Returns as IDXFindFirstImage does, with IDXERR_NOINDEX if nothing is found and
 * IDXERR_PARAM if `index` is missing or out of range.
 */
IDXFIND IDXFindFirstIndex(IDXITEM* item, IDXSTATUS* status);

/*
 * Finds the next index. With IDXOP_GETINFO writes `name`, `index` and `attribute`. IDX_OK; IDXERR_NOINDEX: the end of
 * the walk; IDXERR_PARAM: `find` is null. REQUIRES: IDXFindFirstIndex returned the handle.
 */
IDXSTATUS IDXFindNextIndex(IDXFIND find, IDXITEM* item);

/*
 * Renames `count` indexes, protected or not: names[i] becomes the display name of the index numbers[i]. A name may be
 * empty. A load does not restore the names of presets: set them after each IDXInitialize.
 *
 * An invalid element is no failure:
 *
 * - If a name is null or cannot be converted, the call uses the name that it used for the previous element. For the
 *   first element it uses the empty name.
 * - If a number is out of range, the call uses the number that it used for the previous element. For the first element
 *   it uses IDX_ROOT, and renames the root.
 *
 * A failed allocation for the conversion of a name or a number has the same effect.
 *
 *     IDX_OK
 *     IDXERR_PARAM    an array is null: nothing is renamed. Or an index does not exist, or a name could not be stored:
 *                     the other indexes are renamed
 */
IDXSTATUS IDXSetPresetIndexName(const IDXSTR* names, const int32_t* numbers, int32_t count);

/*
 * ---- Files
 *
 * Each call takes the name of a file, and appends the name to the base directory. The file is an XML property list (a
 * dictionary of named values) with a list of the indexes, a list of the images, or both. A list is a text: the version
 * line, then one line for each index or image. Values under other names belong to applications, and writes keep them.
 *
 * If the string of the name is missing, empty or cannot be converted, the call uses the path of the base directory as
 * the path of the file. A directory is not a catalogue file, so the call returns IDXERR_FAILED. If the directory does
 * not exist, a load returns IDXERR_NODATA.
 */

/*
 * Adds the indexes of the file to the catalogue. Indexes that exist already do not change. Call it before
 * IDXLoadImageFile.
 *
 *     IDX_OK
 *     IDXERR_FAILED        the file cannot be read, or is not a catalogue file
 *     IDXERR_PARAM         `name` is null
 *     IDXERR_NODATA        there is no such file, or the file has no list of indexes, or the list has no bytes
 *     IDXERR_EMPTY         the list has bytes but no line, not even the version line
 *     IDXERR_VERSION       the first line is not the version line of this library
 *     IDXERR_MEMORY        an allocation failed. Some of the indexes may have been added
 *
 * A list with only the version line adds nothing, and the call returns IDX_OK.
 *
 * After any failure except IDXERR_NODATA, do not overwrite the file. The file may hold entries that were not loaded. A
 * write would lose them.
 *
 * Even with IDX_OK some entries may not be loaded, and the next write loses them. A line that is invalid is skipped. A
 * line with a missing field can make the next line invalid too. A line whose entry cannot be allocated is also skipped.
 */
IDXSTATUS IDXLoadIndexFile(IDXSTR name);

/*
 * Adds the images of the file to the catalogue. Images that are in the catalogue already are skipped. Images whose file
 * or index does not exist are skipped too, with IDX_OK, and the next write loses them. An example is the images of a
 * disk that is not mounted.
 *
 * Statuses as for IDXLoadIndexFile, except for a list without a line: the status is IDXERR_VERSION, not IDXERR_EMPTY.
 */
IDXSTATUS IDXLoadImageFile(IDXSTR name);

/*
 * Writes the indexes to the file. A missing file is created. In an existing file the list of indexes is replaced, and
 * all other values are kept.
 *
 *     IDX_OK
 *     IDXERR_FAILED        the file exists and is not a catalogue file, or cannot be written
 *     IDXERR_PARAM         `name` is null
 *     IDXERR_MEMORY
 *
 * After any failure the old file is intact. There is one exception: if the folder of the file does not allow new files,
 * the file is overwritten in place, and a failure can cut it short.
 *
 * An index whose attribute is exactly 7 (the three protections) is not written. This is meant for the presets, which
 * every catalogue has from the start. It also affects an added index that has this attribute. If an index below the
 * added index is written, the next load creates the added index with the name and attribute of the first of these
 * indexes in the file. Otherwise the next load does not create the added index, and skips its images.
 *
 * A name that is empty or has a line feed damages the file, although the write returns IDX_OK. The next load gives this
 * index a wrong name. It loses the index of the next line, or gives it another number.
 */
IDXSTATUS IDXWriteIndexFile(IDXSTR name);

/*
 * Writes the images to the file, as IDXWriteIndexFile writes the indexes. All images are written, whatever their
 * attribute. An image whose path has a line feed is lost at the next load, and so is the image of the next line.
 */
IDXSTATUS IDXWriteImageFile(IDXSTR name);

/* ---- Scenes */

/*
 * Decides what the picture shows, and writes the number of the preset for the picture to `presetIndex`. Writes -1 for
 * an undecided picture, and on failure. The first of these rules that applies decides:
 *
 * 1. `fixedScene` is 1: the preset is IDXPRESET_DOCUMENT_FIXED.
 * 2. `width` and `height` are above 0, and one of them is below 50: the preset is IDXPRESET_PHOTO_OTHER.
 * 3. `width` and `height` are above 0, and one of them is above 4096: the call returns IDXERR_IMAGESIZE.
 * 4. `typeHint` is 1: the picture is a document.
 * 5. `typeHint` is 2, `photoHint` is 3, or `photoKind` is 1, 2 or 3: the picture is a photograph.
 * 6. The picture has no pixels: it stays undecided.
 * 7. The recognizer decides between document and photograph.
 *
 * The preset of a document follows from its size. If `width` or `height` is 0 or less, the document stays undecided. A
 * photograph whose `photoKind` is 1 or 3 gets IDXPRESET_PHOTO_OTHER. Any other photograph goes to the face detector;
 * without pixels it stays undecided.
 *
 * A picture counts as one without pixels if `pixels` is null, or if rowBytes * height is 0 or another multiple of 2^32.
 *
 *     IDX_OK             decided or undecided
 *     IDXERR_FAILED      there is no catalogue
 *     IDXERR_PARAM       `data` is null; nothing is written
 *     IDXERR_MEMORY      a copy of the pixels could not be allocated; or rowBytes * height is negative or above
 *                        2^31 - 1, and not a multiple of 2^32
 *     IDXERR_DETECTOR    the recognizer is needed, and its parameters (brennparam.dat) are missing
 *     IDXERR_IMAGESIZE   by rule 3
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
