// An open picture file, and the errors of libvips in words. Internal to the files that call libvips.
//
// libvips keeps one error text a process, so with several threads nobody knows whose error it holds. A picture that fails is
// decoded again with exclusive use of libvips; the error text then is its own. Damage is rare, so the second attempt is cheap.
#ifndef CATALOGCORE_APP_PICTURE_FILE_H_
#define CATALOGCORE_APP_PICTURE_FILE_H_

#include <vips/vips.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "app/picture.h"
#include "app/picture_format.h"

namespace catalogcore::app {

struct Unreference {
  void operator()(void* object) const { g_object_unref(object); }
};
using OwnedImage = std::unique_ptr<VipsImage, Unreference>;

// The file ends before the image does.
class CutShort : public PictureError {
 public:
  CutShort() : PictureError("the image is cut short") {}
};

// A call of libvips failed; the error text says why. Caught by UseLibvips.
struct LibvipsFailure {};

// The image that a call of libvips wrote to `image`. `image` is a reference because arguments are evaluated in any order.
inline OwnedImage Taken(int failed, VipsImage* const& image) {
  if (failed != 0 || image == nullptr) throw LibvipsFailure();
  return OwnedImage(image);
}

class PictureFile {
 public:
  // Never waits for a pipe. Throws PictureError if the file cannot be opened, is not a regular file or not a picture.
  explicit PictureFile(const std::filesystem::path& path);
  PictureFile(const PictureFile&) = delete;
  PictureFile& operator=(const PictureFile&) = delete;
  ~PictureFile();

  // Opens the first picture of the file and reads its header. Read the rows from the top down. Destroy an image before
  // opening the next: they share the file position. The decoder divides the sides by `shrink`: 1, 2, 4 or 8 for JPEG, any
  // number for WebP, else 1. REQUIRES: inside UseLibvips.
  OwnedImage Open(VipsFailOn failOn, int shrink = 1) const;

  // The errors that a first attempt fails on. Decoders other than JPEG's report an error where pixels are lost, and a
  // harmless defect as a warning. JPEG's reports everything as a warning.
  VipsFailOn Strictness() const { return format_ == PictureFormat::kJpeg ? VIPS_FAIL_ON_WARNING : VIPS_FAIL_ON_ERROR; }

  // Fills `bytes` from `offset` on. False if the file ends before.
  bool Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;

  std::uint64_t Size() const { return size_; }
  PictureFormat Format() const { return format_; }
  std::time_t ChangeTime() const { return changeTime_; }
  bool IsCutShort() const;  // by the first and last bytes of the file

 private:
  void Examine(const std::filesystem::path& path);

  int descriptor_ = -1;
  std::uint64_t size_ = 0;
  std::time_t changeTime_ = 0;
  PictureFormat format_ = PictureFormat::kJpeg;
  std::unique_ptr<VipsSource, Unreference> source_;
};

// Shared or exclusive use of libvips by one thread.
class LibvipsUse {
 public:
  explicit LibvipsUse(bool isExclusive);
  LibvipsUse(const LibvipsUse&) = delete;
  LibvipsUse& operator=(const LibvipsUse&) = delete;
  ~LibvipsUse();

 private:
  const bool isExclusive_;
};

// Throws the error for the error text of libvips, and clears the text. Returns if it holds only harmless warnings.
void ThrowReason(const PictureFile& file, VipsFailOn failOn);

// Width, height and resolution of a file. `header` is its header at full size.
PictureFacts FactsOf(const PictureFile& file, VipsImage* header);

// Returns work(failOn). When a call of libvips fails, `work` throws LibvipsFailure, and this PictureError.
template <typename Work>
auto UseLibvips(const PictureFile& file, const Work& work) {
  try {
    const LibvipsUse use(false);
    return work(file.Strictness());
  } catch (const LibvipsFailure&) {
  }
  const LibvipsUse use(true);
  for (VipsFailOn failOn = file.Strictness();; failOn = VIPS_FAIL_ON_ERROR) {
    vips_error_clear();
    try {
      return work(failOn);
    } catch (const LibvipsFailure&) {
      ThrowReason(file, failOn);
    }
  }
}

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_FILE_H_
