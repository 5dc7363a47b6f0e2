/*
 * Adds an index, files three pictures, writes the catalogue, loads it again and walks it: catalogue DIRECTORY. The
 * directory must exist. The pictures are created in it, as empty files.
 */
#include <catalogcore.h>
#include <stdio.h>
#include <string.h>

static CFStringRef text(const char* utf8) {
  return CFStringCreateWithCString(kCFAllocatorDefault, utf8, kCFStringEncodingUTF8);
}

/* Prints a failure. Returns whether the call succeeded. */
static int succeeds(const char* call, IDXSTATUS status) {
  if (status != IDX_OK) fprintf(stderr, "%s returns %u\n", call, status);
  return status == IDX_OK;
}

static int file_pictures(const char* directory, int32_t holidays) {
  const struct {
    const char* name;
    int32_t index;
  } pictures[] = {
      {"beach.jpg", holidays}, {"anna.jpg", IDXPRESET_PHOTO_FACES}, {"letter.png", IDXPRESET_DOCUMENT_PAGE}};
  int filed = 1;
  size_t i;
  for (i = 0; i < sizeof pictures / sizeof pictures[0]; ++i) {
    char path[4096];
    FILE* file;
    CFStringRef name;
    IDXITEM item = {0};
    snprintf(path, sizeof path, "%s/%s", directory, pictures[i].name);
    file = fopen(path, "wb");
    if (file) fclose(file);
    name = text(path);
    item.name = &name;
    item.index = pictures[i].index;
    item.mask = IDXMASK_NAME | IDXMASK_INDEX;
    filed = succeeds("IDXAddImage", IDXAddImage(&item)) && filed;
    CFRelease(name);
  }
  return filed;
}

/* Prints all images and returns their number. */
static int print_images(void) {
  CFStringRef name = NULL;
  IDXITEM item = {0};
  IDXSTATUS status;
  IDXFIND find;
  int count = 0;
  item.operation = IDXOP_GETINFO;
  item.name = &name;
  item.mask = IDXMASK_NAME | IDXMASK_INDEX;
  find = IDXFindFirstImage(&item, &status);
  for (; status == IDX_OK; status = IDXFindNextImage(find, &item)) {
    char path[4096] = "";
    if (name) CFStringGetCString(name, path, sizeof path, kCFStringEncodingUTF8);
    CFRelease(name); /* every call stores a new string */
    name = NULL;
    printf("%d %s\n", (int)item.index, path);
    ++count;
  }
  IDXCloseFind(find);
  return count;
}

/* Adds an index below the photographs. */
static int add_index(int32_t* number) {
  CFStringRef name = text("Holidays");
  IDXITEM item = {0};
  int works;
  item.operation = IDXOP_GETINFO;
  item.name = &name;
  item.index = IDXPRESET_PHOTO;
  item.mask = IDXMASK_NAME | IDXMASK_INDEX;
  works = succeeds("IDXAddIndex", IDXAddIndex(&item));
  *number = item.index;
  CFRelease(name);
  return works;
}

static int write_files(IDXSTR indexes, IDXSTR images) {
  return succeeds("IDXWriteIndexFile", IDXWriteIndexFile(indexes)) &&
         succeeds("IDXWriteImageFile", IDXWriteImageFile(images));
}

static int load_files(IDXSTR indexes, IDXSTR images) {
  return succeeds("IDXLoadIndexFile", IDXLoadIndexFile(indexes)) &&
         succeeds("IDXLoadImageFile", IDXLoadImageFile(images));
}

int main(int argc, char** argv) {
  const char* where = argc > 1 ? argv[1] : ".";
  CFStringRef directory = text(where);
  CFStringRef indexes = text("indexes.plist");
  CFStringRef images = text("images.plist");
  int32_t holidays = 0;
  int works = succeeds("IDXInitialize", IDXInitialize()) && succeeds("IDXSetFilePath", IDXSetFilePath(&directory)) &&
              add_index(&holidays) && file_pictures(where, holidays) && write_files(&indexes, &images);
  /* The new catalogue is empty; the files restore the old one. */
  works = works && succeeds("IDXInitialize", IDXInitialize()) && print_images() == 0 &&
          succeeds("IDXSetFilePath", IDXSetFilePath(&directory)) && load_files(&indexes, &images) &&
          print_images() == 3;
  IDXUninitialize();
  CFRelease(images);
  CFRelease(indexes);
  CFRelease(directory);
  return works ? 0 : 1;
}
