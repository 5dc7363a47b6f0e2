/*
 * CatalogCore: a catalogue of image files in memory, for C and C++.
 *
 * An image is known by the full path of its file. It is filed under one index, a category in a tree of categories,
 * and under the folder of its file. The tree of indexes begins with ten presets. The catalogue is loaded from, and
 * written to, two files below a base directory.
 *
 * Threads: any thread may make any call, and calls wait for each other where they must; but IDXInitialize,
 * IDXUninitialize, IDXSetFilePath and IDXCloseFind must not overlap other calls (IDXCloseFind: those on its handle),
 * a find handle and a record belong to one thread at a time, and two writes must not be made to one file at once.
 *
 * No call throws. Every call that takes a record gives IDXERR_PARAM for a null one, and every call on the catalogue
 * gives IDXERR_FAILED before IDXInitialize, but for the next step of a walk of earlier, which is at its end.
 *
 * Memory: where there is none a call gives IDXERR_MEMORY, but IDXERR_FAILED where it was a string handed in, or a file,
 * that could not be read or written for want of it; IDXInitialize gives IDXERR_DETECTOR where that was the
 * recognizer's, and IDXSetPresetIndexName tells of nothing but its two statuses. The catalogue is then as it was before
 * the call, if the call says nothing else; the library can be used on, and what failed called again.
 */
#ifndef CATALOGCORE_H_
#define CATALOGCORE_H_

#include <CoreFoundation/CoreFoundation.h>
#include <stdint.h>

/*
 * Text that crosses the boundary, UTF-8 inside the library: a pointer to a string variable of the application. On
 * input the library reads the string that the variable holds and never releases it: an empty one gives IDXERR_MEMORY,
 * none or one that cannot be converted IDXERR_FAILED. On output it stores a new string, which the application owns
 * and releases; a string that the variable held before is not released. Text that is no UTF-8 (only a file can bring
 * it), or that there is no memory for, leaves the variable as it is: set it to NULL before the call to tell.
 */
typedef CFStringRef* IDXSTR;

/* What a call returns. */
typedef uint32_t IDXSTATUS;

enum {
  IDX_OK = 0,              /* success */
  IDXERR_FAILED = 1,       /* not initialised; a string cannot be converted; a file cannot be read or written */
  IDXERR_PARAM = 2,        /* an argument or a field is missing, or is none that can be */
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

/* Bits of IDXITEM.operation. */
enum {
  IDXOP_GETINFO = 1,  /* write the fields of the entry that was found into the record */
  IDXOP_CONDITION = 2 /* find-first calls: only what the marked fields tell */
};

/* Bits of IDXITEM.mask: the fields that are there to be read, and wanted to be written. Others are ignored. */
enum {
  IDXMASK_NAME = 1,     /* IDXITEM.name */
  IDXMASK_PATH = 2,     /* IDXITEM.path */
  IDXMASK_INDEX = 4,    /* IDXITEM.index */
  IDXMASK_ATTRIBUTE = 8 /* IDXITEM.attribute */
};

/* Bits of IDXITEM.state. */
enum {
  IDXSTATE_FORCE = 1 /* move, remove or rename also what its attribute protects */
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
  IDXPRESET_DOCUMENT_FIXED = 2040000, /* documents by the application's word (IDXDSDATA.fixedScene) */
  IDXPRESET_DOCUMENT_OTHER = 2090000, /* documents of any other size */
  IDXPRESET_OTHER = 9000000           /* never chosen by the scene detector */
};

/*
 * One entry of the catalogue: what a call asks for, and what it answers. The library keeps no pointer to it, nor to
 * the string variables.
 */
typedef struct IDXITEM {
  uint8_t operation; /* IDXOP_...; never written */
  IDXSTR name;       /* of an image its full path, of an index its display name */
  IDXSTR path;       /* a folder */
  int32_t index;     /* an index number */
  uint8_t attribute; /* IDXATTR_... and bits of the application's */
  uint32_t mask;     /* IDXMASK_...; never written */
  uint8_t state;     /* IDXSTATE_...; never written */
} IDXITEM;

/*
 * A walk over images or indexes, from a find-first call to IDXCloseFind. The catalogue may change between its steps, by
 * the walker or by any thread:
 * - A step finds what lies ahead by then: nothing that was removed, and what was added or moved there. So an image that
 *   is moved ahead is found again.
 * - From an image that was removed or moved, the walk goes on with what stood behind it then, and passes over what was
 *   added in between since.
 * - The walk ends where the index it stands on was removed: the one found last, or, in a walk over images without a
 *   path, that of the image found last.
 * What is removed or moved takes memory until every walk is closed that was open then; without IDXCloseFind, until
 * IDXInitialize or IDXUninitialize.
 */
typedef struct SearchHandle* IDXFIND;

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
 * Makes an empty catalogue with the ten presets, named "idx" and their numbers, and no base directory. Whatever an
 * earlier call made is dropped first. IDX_OK: a root or a preset is missing only where there was no memory for it;
 * IDXERR_MEMORY: nothing is initialised; IDXERR_DETECTOR: the catalogue works, and so does scene detection where the
 * recognizer is not needed.
 */
IDXSTATUS IDXInitialize(void);

/*
 * Drops the catalogue. IDX_OK, also when there is none. Walks that are open are at their end afterwards, and still to
 * be closed; the same holds after IDXInitialize.
 */
IDXSTATUS IDXUninitialize(void);

/*
 * Sets the directory of the catalogue's files. A "/" is added to it, always. IDX_OK; IDXERR_PARAM: null; else what
 * the string gives; with IDXERR_MEMORY no directory is set any more.
 */
IDXSTATUS IDXSetFilePath(IDXSTR path);

/* ---- Images */

/*
 * Files an image: reads name, index, and attribute (0 if not marked). IDX_OK; IDXERR_PARAM: a field is missing, the
 * name holds no "/", the index is out of range or the root, the folder is no path; IDXERR_IMAGEEXISTS;
 * IDXERR_NOINDEX; IDXERR_MEMORY: its folder may be made all the same, or the folders above it have gone, from
 * the nearest that was there upward, with their images: each that had no folder left below it and that nothing
 * protects.
 */
IDXSTATUS IDXAddImage(IDXITEM* item);

/*
 * Moves an image to another index (if marked), then sets its attribute (if marked); a move stays when the second step
 * fails. An image that is to be moved and is not there is added as by IDXAddImage. An index of -1 removes the image
 * as by IDXRemoveImage, whether marked or not. Reads name, index, attribute, state. IDX_OK; IDXERR_PARAM: as for
 * IDXAddImage; IDXERR_PROTECTED; IDXERR_NOINDEX; IDXERR_NOIMAGE: only an attribute was marked; IDXERR_IMAGEEXISTS:
 * another thread added it meanwhile; IDXERR_MEMORY: the image may be gone if it was to be moved; mark the attribute,
 * too, when it is filed again.
 */
IDXSTATUS IDXChangeImage(IDXITEM* item);

/* Reads name and state. IDX_OK; IDXERR_PARAM: no name; IDXERR_NOIMAGE; IDXERR_PROTECTED. */
IDXSTATUS IDXRemoveImage(IDXITEM* item);

/* Reads name; writes index and attribute, whatever the operation. IDX_OK; IDXERR_PARAM: no name; IDXERR_NOIMAGE. */
IDXSTATUS IDXSearchImage(IDXITEM* item);

/*
 * Begins a walk over images. Under IDXOP_CONDITION over those of the marked index and what is below it (not marked:
 * all), in the marked path's folder and what is below it (not marked, or ".": any). Under IDXOP_GETINFO writes name,
 * index and attribute of the first. Returns the handle, to be closed with IDXCloseFind, and IDX_OK in `*status`
 * (which may be null); else null and IDXERR_NOIMAGE, IDXERR_MEMORY or what a field gives.
 */
IDXFIND IDXFindFirstImage(IDXITEM* item, IDXSTATUS* status);

/*
 * The next image, written as by IDXFindFirstImage. IDX_OK; IDXERR_NOIMAGE at the end; IDXERR_PARAM: no handle. Give
 * it handles of IDXFindFirstImage only.
 */
IDXSTATUS IDXFindNextImage(IDXFIND find, IDXITEM* item);

/* Ends a walk of either kind and frees its handle, whatever has become of the catalogue; null is allowed. IDX_OK. */
IDXSTATUS IDXCloseFind(IDXFIND find);

/* ---- Indexes */

/*
 * Adds an index of this name under the parent that `index` names, with the lowest number from 10 to 29 that is free
 * there. Reads index, name, and attribute (0 if not marked). Under IDXOP_GETINFO writes its number to index, also
 * when adding fails. IDX_OK; IDXERR_PARAM: a field is missing, the parent is out of range or on the fourth level;
 * IDXERR_NOINDEX: no parent; IDXERR_INDEXEXISTS: it has a child of this name, byte for byte, whose number is written
 * under IDXOP_GETINFO; IDXERR_INDEXFULL; IDXERR_MEMORY: the parent may have gone, with its images, if it has no child
 * and nothing protects them, and so on upward.
 */
IDXSTATUS IDXAddIndex(IDXITEM* item);

/*
 * Changes the display name (if marked), then the attribute (if marked); the second step's status replaces the
 * first's, but a name that cannot be read ends the call. Reads index, name, attribute, state. IDX_OK; IDXERR_PARAM:
 * no index, or a marked name without a variable; IDXERR_NOINDEX; IDXERR_PROTECTED; IDXERR_MEMORY; what the name
 * gives.
 */
IDXSTATUS IDXChangeIndex(IDXITEM* item);

/*
 * Removes an index and takes its images out of the catalogue. Reads index and state. IDX_OK; IDXERR_PARAM: no index;
 * IDXERR_NOINDEX; IDXERR_NOTEMPTY: it has child indexes, as the root always has; IDXERR_PROTECTED: it, or one of its
 * images; those before that image are gone then.
 */
IDXSTATUS IDXRemoveIndex(IDXITEM* item);

/* Reads index; writes name and attribute, whatever the operation. IDX_OK; IDXERR_PARAM: no index; IDXERR_NOINDEX. */
IDXSTATUS IDXSearchIndex(IDXITEM* item);

/*
 * Begins a walk over all indexes but the root, parents before children; under IDXOP_CONDITION (which reads index)
 * from that index on, itself included, over what is below it. Under IDXOP_GETINFO writes name, index and attribute of
 * the first. Returns as IDXFindFirstImage, with IDXERR_NOINDEX for the end.
 */
IDXFIND IDXFindFirstIndex(IDXITEM* item, IDXSTATUS* status);

/*
 * The next index, written as by IDXFindFirstIndex. IDX_OK; IDXERR_NOINDEX at the end; IDXERR_PARAM: no handle. Give
 * it handles of IDXFindFirstIndex only.
 */
IDXSTATUS IDXFindNextIndex(IDXFIND find, IDXITEM* item);

/*
 * Gives indexes, protected or not, the display names of the array, `count` of both. An empty name is given as it is.
 * A name that cannot be converted, or a number out of range, repeats the one of the entry before; in the first entry
 * it is the empty name, or the root. IDX_OK; IDXERR_PARAM: an index is not there, and the others are renamed all the
 * same; or an array is null.
 */
IDXSTATUS IDXSetPresetIndexName(const IDXSTR* names, const int32_t* numbers, int32_t count);

/*
 * ---- Files
 *
 * Each call takes the name of a file in the base directory: an XML property list that holds the indexes, the images,
 * or both, each as a text of one record a line, and whatever other entries an application puts there. A name that is
 * empty or cannot be read names the directory itself, which is no such file.
 */

/*
 * Adds the indexes of the file to the catalogue; those that are there already are left as they are. To be called
 * before IDXLoadImageFile. IDX_OK; IDXERR_FAILED: the file cannot be read, or is none of this kind; IDXERR_PARAM:
 * null; IDXERR_NODATA: no such file, or it holds no indexes; IDXERR_EMPTY; IDXERR_VERSION; IDXERR_MEMORY: only a part
 * may be there. After IDXERR_FAILED and IDXERR_MEMORY the file holds more than the catalogue: do not write over it. An
 * entry that the catalogue refuses, or has no memory for, is skipped, with IDX_OK.
 */
IDXSTATUS IDXLoadIndexFile(IDXSTR name);

/*
 * Adds the images of the file to the catalogue, but for those whose file does not exist (any more), whose index is
 * not in the catalogue, or which are there already. Statuses as IDXLoadIndexFile, but IDXERR_VERSION in place of
 * IDXERR_EMPTY.
 */
IDXSTATUS IDXLoadImageFile(IDXSTR name);

/*
 * Writes the indexes to the file, which is made or, its other entries kept, replaced: it is the old or the new one,
 * whole, whatever fails, but where its folder takes no new file and it is written in place. Indexes with all three
 * protections are left out, as the presets are; one whose child is written comes back with the child's name and
 * attribute. An empty name, or one with a line feed, does not come back and spoils the record behind it. IDX_OK;
 * IDXERR_FAILED: the file is there and none of this kind, or cannot be written; IDXERR_PARAM: null; IDXERR_MEMORY.
 */
IDXSTATUS IDXWriteIndexFile(IDXSTR name);

/* Writes the images in the same way. A path with a line feed does not come back. */
IDXSTATUS IDXWriteImageFile(IDXSTR name);

/* ---- Scenes */

/*
 * Decides what the picture shows and writes the number of the preset index that it belongs in to `presetIndex`: -1 in
 * every failure. A picture without pixels is decided by its hints and sizes alone, or stays undecided (-1, IDX_OK).
 *   IDX_OK             decided, or nothing to decide by
 *   IDXERR_FAILED      the library is not initialised
 *   IDXERR_PARAM       `data` is null; nothing is written
 *   IDXERR_MEMORY      no memory for a copy of the pixels
 *   IDXERR_DETECTOR    the recognizer is needed and its parameter resource is not there
 *   IDXERR_IMAGESIZE   width or height is above 4096 pixels, and neither below 50
 *   IDXERR_RECOGNIZER + 1 to 255, IDXERR_FACES + 1 to 255: failures inside the two engines
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
