// Pictures from files: decoding for scene detection, what their headers tell, and small copies of them. Everything that
// touches libvips is behind this header.
//
// Any thread may call these functions, after StartPictures.
#ifndef CATALOGCORE_APP_PICTURE_H_
#define CATALOGCORE_APP_PICTURE_H_

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace catalogcore::app {

// A file that is no picture, not a whole one, or one too large to be held. what() says which, for a person, without the
// file's name: "not an image file", "the image is cut short", "the image is damaged: bad Huffman code", "the image is too
// large", "Permission denied".
class PictureError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Starts libvips, once a process and before other threads, with one thread a picture: pictures, not parts of one, are
// worked on side by side. Messages of libvips and GLib are silenced from then on. Throws std::runtime_error.
void StartPictures(const char* program);

// Whether a file's name ends like that of a picture that can be decoded here (.jpg, .JPEG, .png, .tif, .webp, .heic, ...).
bool HasPictureName(const std::filesystem::path& file);

// What a file may have, by its header.
inline constexpr int kMostSamplesPerPixel = 5;  // four inks and transparency
inline constexpr int kMostPasses = 100;         // of a JPEG file; encoders write about ten
inline constexpr std::uint64_t kMostDecodedMegabytes = 2048;
// Where the decoder holds the whole picture: WebP, HEIF, and JPEG and PNG in several passes. A JPEG decoder holds two
// bytes a sample.
inline constexpr std::uint64_t kMostHeldMegabytes = 1024;

inline constexpr std::int32_t kLongestSide = 4096;  // pixels of a picture whose scene can be detected
inline constexpr std::size_t kMostPixelBytes = std::size_t{3} * kLongestSide * kLongestSide;

// A picture upright, 8 bits a sample, no alpha: one sample a pixel if the file is grey, else three (red, green, blue).
struct PictureShape {
  std::int32_t width = 0;         // pixels, 1 to kLongestSide
  std::int32_t height = 0;        // rows, 1 to kLongestSide
  std::int32_t bitsPerPixel = 0;  // 8 or 24
  std::int32_t resolution = 0;    // dots per inch of these pixels; 0: unknown
  std::string warning;            // what is wrong with a file that could be decoded all the same; empty: nothing
};

struct Picture : PictureShape {
  std::vector<std::uint8_t> pixels;  // height rows of width * bitsPerPixel / 8 bytes, no padding
};

// Returns where to decode to: at least `bytes` bytes, at most kMostPixelBytes. May be called again for the same picture.
using PixelRoom = std::function<std::uint8_t*(std::size_t bytes)>;

// Decodes the first picture of a file, reduced until no side is above kLongestSide; the resolution goes down with it.
// The format is told by the file's content: JPEG, PNG, TIFF, WebP or HEIF. A JPEG file whose end is missing is decoded
// with a warning if at least half of its rows are there, or one whole pass of several. Throws PictureError,
// std::bad_alloc.
PictureShape DecodePicture(const std::filesystem::path& file, const PixelRoom& room);
Picture DecodePicture(const std::filesystem::path& file);

// What the header of a file tells.
struct PictureFacts {
  std::int32_t width = 0;  // pixels of the file, upright
  std::int32_t height = 0;
  std::int32_t resolution = 0;  // dots per inch that a scanner could have meant; 0: none
  std::string date;             // when it was taken, "2024-05-31 18:20:05"; else the file's time of change
};

// Reads no pixels: a file with facts may still be cut short. Throws PictureError, std::bad_alloc.
PictureFacts ReadPictureFacts(const std::filesystem::path& file);

// An upright JPEG copy of at most side x side pixels, as the bytes of a file. Never enlarges. Throws PictureError,
// std::bad_alloc.
std::string SmallCopy(const std::filesystem::path& file, int side);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_H_
