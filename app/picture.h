// Decodes picture files for scene detection, reads the facts of their headers and makes small copies. All use of libvips
// is behind this header.
//
// Any thread may call these functions after StartPictures.
#ifndef CATALOGCORE_APP_PICTURE_H_
#define CATALOGCORE_APP_PICTURE_H_

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

namespace catalogcore::app {

// A file that is not a picture, is incomplete or damaged, or exceeds a limit. what() says why, without the file name: "not
// an image file", "the image is cut short", "the image is damaged: bad Huffman code", "Permission denied".
class PictureError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Starts libvips with one thread a picture and silences the messages of libvips and GLib. Call it once a process, before
// other threads start. Throws std::runtime_error.
void StartPictures(const char* program);

// Whether the file name has the extension of a supported format (.jpg, .JPEG, .png, .tif, .webp, .heic, ...).
bool HasPictureName(const std::filesystem::path& file);

// Limits on what the header of a file states.
inline constexpr int kMostSamplesPerPixel = 5;  // four inks and transparency
inline constexpr int kMostPasses = 100;         // of a JPEG file; encoders write about ten
inline constexpr std::uint64_t kMostDecodedMegabytes = 2048;
// For decoders that hold the whole picture: WebP, HEIF, and JPEG and PNG in several passes. A JPEG decoder holds two bytes
// a sample.
inline constexpr std::uint64_t kMostHeldMegabytes = 1024;

inline constexpr std::int32_t kLongestSide = 4096;  // pixels of a picture for scene detection
inline constexpr std::size_t kMostPixelBytes = std::size_t{3} * kLongestSide * kLongestSide;

// A decoded picture: upright, 8 bits a sample, no alpha, one sample a pixel if the file is grey, else red, green, blue.
struct PictureShape {
  std::int32_t width = 0;         // pixels, 1 to kLongestSide
  std::int32_t height = 0;        // rows, 1 to kLongestSide
  std::int32_t bitsPerPixel = 0;  // 8 or 24
  std::int32_t resolution = 0;    // dots per inch of these pixels; 0: unknown
  std::string warning;            // the defect of a file that could still be decoded; empty: none
};

// Returns a block for `bytes` bytes, at most kMostPixelBytes. DecodePicture may call it more than once.
using PixelAllocator = std::function<std::uint8_t*(std::size_t bytes)>;

// Decodes the first picture of a file into the block that `allocate` returns last: `height` rows of `width` pixels
// without padding. Reduces the picture, and its resolution with it, until no side exceeds kLongestSide. The content of
// the file decides its format: JPEG, PNG, TIFF, WebP or HEIF. A JPEG file without its end is decoded with a warning if it
// has at least half of its rows, or one complete pass of several. Throws PictureError, std::bad_alloc.
PictureShape DecodePicture(const std::filesystem::path& file, const PixelAllocator& allocate);

struct PictureFacts {
  std::int32_t width = 0;  // pixels of the file, upright
  std::int32_t height = 0;
  std::int32_t resolution = 0;  // dots per inch, if a scanner may have written it (picture_facts.cpp); else 0
  std::string date;             // when the picture was taken, "2024-05-31 18:20:05"; else the file's time of change
};

// Reads the header only: a file with facts may still be incomplete. Throws PictureError, std::bad_alloc.
PictureFacts ReadPictureFacts(const std::filesystem::path& file);

// The content of a JPEG file: the picture upright and reduced until no side exceeds `side` pixels. Never enlarges. Throws
// PictureError, std::bad_alloc.
std::string SmallCopy(const std::filesystem::path& file, int side);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_H_
