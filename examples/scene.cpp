// Decides what a picture shows and files it: scene DIRECTORY. The picture is drawn here: a page of A4 with lines on it.
#include <catalogcore.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

struct Release {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};
using String = std::unique_ptr<std::remove_pointer_t<CFStringRef>, Release>;

static String Text(const std::string& utf8) {
  return String(CFStringCreateWithCString(kCFAllocatorDefault, utf8.c_str(), kCFStringEncodingUTF8));
}

int main(int argc, char** argv) {
  if (IDXInitialize() != IDX_OK) return 1;

  std::vector<std::uint8_t> page(1240 * 1754, 245);
  for (int y = 150; y < 1600; ++y) {
    for (int x = 150; x < 1090; ++x) {
      const bool isInk = y % 28 < 14 && x / 12 % 7 != 0 && (x * 7 / 4 + y / 28 * 3) % 11 < 4;
      if (isInk) page[static_cast<std::size_t>(y * 1240 + x)] = 40;
    }
  }
  IDXDSDATA picture{};
  picture.pixels = page.data();
  picture.width = 1240;
  picture.height = 1754;
  picture.rowBytes = 1240;
  picture.bitsPerPixel = 8;
  picture.resolution = 150;
  if (const IDXSTATUS status = IDXDetectScene(&picture); status != IDX_OK) {
    std::fprintf(stderr, "IDXDetectScene gives %u\n", status);
    return 1;
  }
  std::printf("preset %d\n", picture.presetIndex);

  const String name = Text(std::string(argc > 1 ? argv[1] : ".") + "/page.png");
  CFStringRef variable = name.get();
  IDXITEM item{};
  item.name = &variable;
  item.index = picture.presetIndex;
  item.mask = IDXMASK_NAME | IDXMASK_INDEX;
  const bool isFiled = IDXAddImage(&item) == IDX_OK;
  IDXUninitialize();
  return isFiled && picture.presetIndex == IDXPRESET_DOCUMENT_PAGE ? 0 : 1;
}
