// Files that say they are pictures, through all that the command does with one: what it refuses, it says why.
#include <new>

#include "app/picture.h"
#include "fuzz/support/fuzzer.h"

namespace catalogcore {

namespace {

using namespace catalogcore::app;

template <typename Work>
bool Succeeds(const Work& work) {
  try {
    work();
    return true;
  } catch (const PictureError& error) {
    EXPECT_STRNE(error.what(), "");
  } catch (const std::bad_alloc&) {
  }
  return false;
}

void ExpectWhole(const Picture& picture, int side) {
  EXPECT_TRUE(picture.width >= 1 && picture.width <= side && picture.height >= 1 && picture.height <= side);
  EXPECT_TRUE(picture.bitsPerPixel == 8 || picture.bitsPerPixel == 24);
  EXPECT_TRUE(picture.resolution >= 0 && picture.resolution <= 9600) << picture.resolution;
  const std::int64_t bytes = std::int64_t{picture.width} * picture.height * (picture.bitsPerPixel / 8);
  EXPECT_EQ(std::ssize(picture.pixels), bytes);
}

}  // namespace

// Of an AVIF picture without data the decoder under libheif keeps 40 bytes each time it is asked; that is not ours to free.
extern "C" const char* __lsan_default_suppressions() { return "leak:libdav1d"; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool started = (StartPictures("picture_fuzzer"), true);
  static const std::string file = ScratchFolder() + "picture", copy = ScratchFolder() + "copy.jpg";
  WriteFile(file, AsText(data, size));
  const bool hasFacts = Succeeds([] { ReadPictureFacts(file); });
  const bool isDecoded = Succeeds([] { ExpectWhole(DecodePicture(file), 4096); });
  EXPECT_TRUE(started && (hasFacts || !isDecoded));
  if (Succeeds([] { WriteFile(copy, SmallCopy(file, 64)); })) ExpectWhole(DecodePicture(copy), 64);
  return 0;
}

}  // namespace catalogcore
