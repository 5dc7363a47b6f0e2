/* What is left of the library without its parameter resource. */
#include <catalogcore.h>

int main(void) {
  static unsigned char pixels[60 * 60];
  CFStringRef name = CFStringCreateWithCString(kCFAllocatorDefault, "/a/b", kCFStringEncodingUTF8);
  IDXITEM item = {0};
  IDXDSDATA picture = {0};
  int failures = 0;
  item.name = &name;
  item.index = IDXPRESET_PHOTO_OTHER;
  item.mask = IDXMASK_NAME | IDXMASK_INDEX;
  picture.pixels = pixels;
  picture.width = picture.height = picture.rowBytes = 60;
  picture.bitsPerPixel = 8;
  failures += IDXInitialize() != IDXERR_DETECTOR;
  failures += IDXAddImage(&item) != IDX_OK;
  failures += IDXDetectScene(&picture) != IDXERR_DETECTOR || picture.presetIndex != -1;
  picture.typeHint = 1;
  failures += IDXDetectScene(&picture) != IDX_OK || picture.presetIndex != IDXPRESET_DOCUMENT_OTHER;
  IDXUninitialize();
  CFRelease(name);
  return failures;
}
