// Decodes files, reads their facts and makes small copies. A refused file has a reason; a decoded one is within the limits.
#include <new>

#include "app/picture.h"
#include "fuzz/support/fuzzer.h"

namespace catalogcore::app {
namespace {

template <typename Work>
bool Succeeds(const Work& work) try {
  work();
  return true;
} catch (const PictureError& error) {
  EXPECT_STRNE(error.what(), "");
  return false;
} catch (const std::bad_alloc&) {
  return false;
}

void Decode(const std::string& file, int side) {
  std::size_t bytes = 0;
  static std::vector<std::uint8_t> pixels(kMostPixelBytes);
  const PictureShape picture = DecodePicture(file, [&](std::size_t size) { return bytes = size, pixels.data(); });
  EXPECT_TRUE(picture.width >= 1 && picture.width <= side && picture.height >= 1 && picture.height <= side);
  EXPECT_TRUE(picture.bitsPerPixel == 8 || picture.bitsPerPixel == 24);
  EXPECT_TRUE(picture.resolution >= 0 && picture.resolution <= 9600) << picture.resolution;
  EXPECT_EQ(bytes, std::size_t(picture.width) * std::size_t(picture.height) * std::size_t(picture.bitsPerPixel / 8));
}

}  // namespace

// For an AVIF picture without data, libdav1d below libheif leaks 40 bytes a call.
extern "C" const char* __lsan_default_suppressions() { return "leak:libdav1d"; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool started = (StartPictures("picture_fuzzer"), true);
  static const std::string file = ScratchFolder() + "picture", copy = ScratchFolder() + "copy.jpg";
  WriteFile(file, AsText(data, size));
  const bool hasFacts = Succeeds([] { ReadPictureFacts(file); });
  const bool isDecoded = Succeeds([] { Decode(file, kLongestSide); });
  EXPECT_TRUE(started && (hasFacts || !isDecoded));
  if (Succeeds([] { WriteFile(copy, SmallCopy(file, 64)); })) Decode(copy, 64);
  return 0;
}

}  // namespace catalogcore::app
