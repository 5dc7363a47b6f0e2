// An image file as libvips reads it, and what its failures are called.
//
// libvips keeps one text of errors a process, so with several threads at work nobody knows whose it is. A picture that
// fails is therefore tried again while no other is worked on; what the text says then is its own. Damage is rare, and
// the reason is worth a second try.
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

namespace catalogcore::app {

struct Unreference {
  void operator()(void* object) const { g_object_unref(object); }
};
using Image = std::unique_ptr<VipsImage, Unreference>;

// The file ends before the image does.
class CutShort : public PictureError {
 public:
  CutShort() : PictureError("the image is cut short") {}
};

// A call of libvips failed; why is in its text of errors. Never leaves UseLibvips.
struct LibvipsFailure {};

// The image that a call has written to `image`. A reference, as arguments are evaluated in any order.
inline Image Taken(int failed, VipsImage* const& image) {
  if (failed != 0 || image == nullptr) throw LibvipsFailure();
  return Image(image);
}

// By the file's first bytes; its name does not count. No other format reaches libvips, which would hand some to
// libraries that were never meant for a stranger's files.
enum class Content { kJpeg, kPng, kTiff, kWebP, kHeif };

class PictureFile {
 public:
  // Throws PictureError: cannot be opened, is no image file, or no regular file, so that nothing waits for a pipe.
  explicit PictureFile(const std::filesystem::path& path);
  PictureFile(const PictureFile&) = delete;
  PictureFile& operator=(const PictureFile&) = delete;
  ~PictureFile();

  // The first picture of the file, of which only the header is read yet; rows have to be taken from the top down. An
  // image must be gone before the next one is opened: they share the place in the file. `shrink` is what its decoder
  // divides the sides by: JPEG 1, 2, 4 or 8, WebP any, others 1. To be called inside UseLibvips.
  Image Open(VipsFailOn failOn, int shrink = 1) const;

  // What to fail on. Libraries for other formats than JPEG fail where pixels are lost, and warn of what harms nobody;
  // that for JPEG never fails, and warns of everything.
  VipsFailOn Strictness() const { return content_ == Content::kJpeg ? VIPS_FAIL_ON_WARNING : VIPS_FAIL_ON_ERROR; }

  // Reads the bytes at `offset`; false if the file is not that long.
  bool Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;

  std::uint64_t Size() const { return size_; }
  Content FileContent() const { return content_; }
  std::time_t ChangeTime() const { return changeTime_; }
  bool IsCutShort() const;  // as far as its first and last bytes tell

 private:
  void Examine(const std::filesystem::path& path);

  int descriptor_ = -1;
  std::uint64_t size_ = 0;
  std::time_t changeTime_ = 0;
  Content content_ = Content::kJpeg;
  std::unique_ptr<VipsSource, Unreference> source_;
};

// Holds off the threads that look for a reason, or (`alone`) all others.
class LibvipsUse {
 public:
  explicit LibvipsUse(bool alone);
  LibvipsUse(const LibvipsUse&) = delete;
  LibvipsUse& operator=(const LibvipsUse&) = delete;
  ~LibvipsUse();

 private:
  const bool alone_;
};

// Throws what libvips' text of errors means for a file, and clears it; returns if it holds harmless warnings alone.
void ThrowReason(const PictureFile& file, VipsFailOn failOn);

// Returns work(failOn), which throws LibvipsFailure when a call of libvips fails; that becomes a PictureError here.
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
