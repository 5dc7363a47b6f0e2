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
  IDX_OK = 0,            /* success */
  IDXERR_FAILED = 1,     /* the library is not initialised; a string cannot be converted, a file not read or written */
  IDXERR_PARAM = 2,      /* an argument is missing, or is none that can be */
  IDXERR_MEMORY = 12,    /* memory could not be allocated; also an empty string handed in */
  IDXERR_DETECTOR = 16,  /* the scene detector's parameter resource could not be opened */
  IDXERR_IMAGESIZE = 18, /* the picture is too large for scene detection */
  IDXERR_RECOGNIZER = 256, /* this much is added to a failure code of the document-type recognizer, 1 to 255 */
  IDXERR_FACES = 512       /* this much is added to a failure code of the face detector */
};

/* Protection bits of an image's or an index's attribute byte; other bits are kept and returned unchanged. */
enum {
  IDXATTR_NOMOVE = 1,   /* not moved to another index without force */
  IDXATTR_NOREMOVE = 2, /* not removed without force */
  IDXATTR_NORENAME = 4  /* not renamed without force (indexes) */
};

/* The numbers of the preset indexes that a scene is filed under. */
enum {
  IDXPRESET_PHOTO_FACES = 1010000,    /* a photograph that shows faces */
  IDXPRESET_PHOTO_OTHER = 1090000,    /* any other photograph */
  IDXPRESET_DOCUMENT_CARD = 2010000,  /* a document of a card's size */
  IDXPRESET_DOCUMENT_POST = 2020000,  /* of a postcard's, or 4 x 6 inches */
  IDXPRESET_DOCUMENT_PAGE = 2030000,  /* A5, B5, A4, Letter or Legal */
  IDXPRESET_DOCUMENT_FIXED = 2040000, /* as the application said (fixedScene) */
  IDXPRESET_DOCUMENT_OTHER = 2090000  /* a document of any other size */
};

/*
 * One picture, and what is known of it. Byte b of the pixel in column x of row y lies at
 * pixels + y * rowBytes + x * (bitsPerPixel / 8) + b; the picture is rowBytes * height bytes.
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

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Decides what the picture shows and writes the number of the preset index that it belongs in to `presetIndex`: -1 in
 * every failure. A picture without pixels is decided by its hints and sizes alone, or stays undecided (-1, IDX_OK).
 *   IDX_OK             decided, or nothing to decide by
 *   IDXERR_FAILED      the library is not initialised
 *   IDXERR_PARAM       `data` is null; nothing is written
 *   IDXERR_MEMORY      no memory for a copy of the pixels
 *   IDXERR_DETECTOR    the recognizer is needed and its parameter resource is not there
 *   IDXERR_IMAGESIZE   width or height is above 4096 pixels
 *   IDXERR_RECOGNIZER + 1 to 255, IDXERR_FACES + 1 to 255: failures inside the two engines
 * Any thread may call it; one detection runs at a time, beside the other calls.
 */
IDXSTATUS IDXDetectScene(IDXDSDATA* data);

#ifdef __cplusplus
}
#endif

#endif /* CATALOGCORE_H_ */
