// Classifies and files three pictures, writes the catalogue, loads it again and walks it: scene DIRECTORY. The directory
// must exist. The program draws the pictures: a page, the same page as a card, and a landscape.
#include <catalogcore.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace {

struct Release {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};
using String = std::unique_ptr<std::remove_pointer_t<CFStringRef>, Release>;

String Text(const std::string& utf8) {
  return String(CFStringCreateWithCString(kCFAllocatorDefault, utf8.c_str(), kCFStringEncodingUTF8));
}

void Check(IDXSTATUS status, const char* call) {
  if (status != IDX_OK) throw std::runtime_error(std::string(call) + " returns " + std::to_string(status));
}

constexpr int kWidth = 1240;
constexpr int kHeight = 1754;

// A grey picture of A4 at 150 dots per inch; `tone(x, y)` is 0 to 255.
template <typename Tone>
std::vector<std::uint8_t> Draw(Tone tone) {
  std::vector<std::uint8_t> pixels;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) pixels.push_back(static_cast<std::uint8_t>(tone(x, y)));
  }
  return pixels;
}

int Page(int x, int y) {
  const bool isWritten = x > 150 && x < 1090 && y > 150 && y < 1600 && y % 28 < 14 && x / 12 % 7 != 0;
  return isWritten && (x * 7 / 4 + y / 28 * 3) % 11 < 4 ? 40 : 245;
}

int Landscape(int x, int y) {
  double tone = 120 - 0.03 * y + (x * 31 + y * 17) % 9;
  for (double size = 190; size > 3; size *= 0.6) {
    tone += size / 5 * std::sin(x / size + 3 * size) * std::cos(y / size * 1.3 + std::sin(x / size / 2));
  }
  return static_cast<int>(std::fmin(std::fmax(tone, 0), 255));
}

// Classifies the picture, files it and returns the number of its index.
std::int32_t File(const std::string& path, const std::vector<std::uint8_t>& pixels, int resolution) {
  IDXDSDATA picture{};
  picture.pixels = pixels.data();
  picture.width = picture.rowBytes = kWidth;
  picture.height = kHeight;
  picture.bitsPerPixel = 8;
  picture.resolution = resolution;
  Check(IDXDetectScene(&picture), "IDXDetectScene");

  std::ofstream(path) << "a picture";
  const String name = Text(path);
  CFStringRef variable = name.get();
  IDXITEM item{};
  item.name = &variable;
  item.index = picture.presetIndex;
  item.mask = IDXMASK_NAME | IDXMASK_INDEX;
  Check(IDXAddImage(&item), "IDXAddImage");
  return picture.presetIndex;
}

// The number of images of each index.
std::map<std::int32_t, int> Walk() {
  std::map<std::int32_t, int> counts;
  IDXITEM item{};
  item.operation = IDXOP_GETINFO;
  item.mask = IDXMASK_INDEX;
  IDXSTATUS status = IDX_OK;
  const IDXFIND find = IDXFindFirstImage(&item, &status);
  for (; status == IDX_OK; status = IDXFindNextImage(find, &item)) ++counts[item.index];
  IDXCloseFind(find);
  return counts;
}

void Run(const std::string& directory) {
  const String base = Text(directory);
  const String images = Text("images.plist");
  CFStringRef baseVariable = base.get();
  CFStringRef imagesVariable = images.get();
  Check(IDXInitialize(), "IDXInitialize");
  Check(IDXSetFilePath(&baseVariable), "IDXSetFilePath");
  const std::map<std::int32_t, int> expected = {
      {File(directory + "/page.png", Draw(Page), 150), 1},
      {File(directory + "/card.png", Draw(Page), 520), 1},
      {File(directory + "/hills.jpg", Draw(Landscape), 0), 1},
  };
  Check(IDXWriteImageFile(&imagesVariable), "IDXWriteImageFile");

  Check(IDXInitialize(), "IDXInitialize");
  Check(IDXSetFilePath(&baseVariable), "IDXSetFilePath");
  Check(IDXLoadImageFile(&imagesVariable), "IDXLoadImageFile");
  for (const auto& [index, count] : Walk()) std::printf("%d: %d\n", index, count);
  const bool isRight = expected.count(IDXPRESET_DOCUMENT_PAGE) && expected.count(IDXPRESET_DOCUMENT_CARD) &&
                       expected.count(IDXPRESET_PHOTO_OTHER) && Walk() == expected;
  if (!isRight) throw std::runtime_error("the pictures are filed under wrong indexes");
}

}  // namespace

int main(int argc, char** argv) {
  int status = 0;
  try {
    Run(argc > 1 ? argv[1] : ".");
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "scene: %s\n", failure.what());
    status = 1;
  }
  IDXUninitialize();
  return status;
}
