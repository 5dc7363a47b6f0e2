// The picture that a caller hands to the recognizer: its record, checked, and a view of its pixels that knows its
// bounds. A view is only made from a record that passed every check; nothing outside stride x height bytes is ever
// read, whatever the record claims.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_PICTURE_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_PICTURE_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "engines/document_type/fault.h"

namespace catalogcore::document_type {

// Fewer columns or rows say nothing about a picture.
inline constexpr std::size_t kSmallestSide = 16;

// Far beyond what the library accepts; keeps every count of pixels in a row small.
inline constexpr std::size_t kLargestSide = 65535;

struct PictureRecord {
  std::size_t samplesPerPixel;  // 1 or 3
  std::size_t bytesPerSample;   // 1 or 2
  std::size_t width;            // pixels
  std::size_t height;           // rows
  std::size_t stride;           // bytes from one row to the next
  std::size_t areaLeft;         // the part to look at, in pixels
  std::size_t areaTop;
  std::size_t areaWidth;
  std::size_t areaHeight;
};

// Reads and checks the record of kBrennRecordSize bytes. `out` holds a usable record when the answer is kNone.
Fault ReadRecord(const unsigned char* record, PictureRecord& out);

// The area to look at, as rows of samples of which only the high byte is seen: after a tone curve that works byte by
// byte the low byte of a 16-bit sample (host order) tells nothing.
class Picture {
 public:
  // REQUIRES: `record` passed ReadRecord; `pixels` holds stride x height bytes that outlive the view.
  Picture(const PictureRecord& record, const void* pixels);

  std::size_t width() const { return width_; }
  std::size_t height() const { return height_; }
  bool hasColour() const { return colour_; }
  std::size_t pixelStep() const { return pixelStep_; }    // bytes from one pixel to the next
  std::size_t sampleStep() const { return sampleStep_; }  // bytes from one sample to the next

  // The bytes of row y (0 is the area's top). Byte x * pixelStep() + s * sampleStep() is the high byte of sample s in
  // column x; the last byte of the span is that of the last sample.
  std::span<const std::uint8_t> Row(std::size_t y) const {
    return {first_ + y * stride_, width_ * pixelStep_ - (sampleStep_ - 1)};
  }

 private:
  std::size_t VisibleWidth() const;

  const std::uint8_t* first_;
  std::size_t width_;
  std::size_t height_;
  std::size_t stride_;
  std::size_t pixelStep_;
  std::size_t sampleStep_;
  bool colour_;
};

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_PICTURE_H_
