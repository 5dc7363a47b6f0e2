// The picture that a caller hands to the recognizer: its record, checked, the area of it that is analysed, and the
// small working copy that the features are measured on. Nothing outside stride x height bytes is read, whatever the
// record says.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_PICTURE_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_PICTURE_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/pixel_view.h"
#include "engines/document_type/fault.h"

namespace catalogcore::document_type {

// The smallest side of an area, in pixels.
inline constexpr std::size_t kSmallestSide = 16;

// The largest side of a picture, in pixels. With it 32 bits hold the sums over a row.
inline constexpr std::size_t kLargestSide = 65535;

struct CheckedRecord {
  std::size_t samplesPerPixel;  // 1 or 3
  std::size_t bytesPerSample;   // 1 or 2
  std::size_t width;            // pixels
  std::size_t height;           // rows
  std::size_t stride;           // bytes from one row to the next
  std::size_t areaLeft;         // the area to analyse, in pixels
  std::size_t areaTop;
  std::size_t areaWidth;
  std::size_t areaHeight;
};

// Parses the record of kBrennRecordSize bytes. Returns kNone and fills `out` if every field is valid.
Fault ReadRecord(const unsigned char* record, CheckedRecord& out);

// The area to analyse, as rows of samples. Of a 16-bit sample (host order) only the high byte is read: the tone curve
// maps the two bytes separately, so the low byte carries no brightness. Columns on the right that are 0 throughout are
// left out.
class AnalysedArea {
 public:
  // REQUIRES: `record` comes from ReadRecord; `pixels` holds stride x height bytes that outlive the area.
  AnalysedArea(const CheckedRecord& record, const void* pixels);

  std::size_t Width() const { return width_; }
  std::size_t Height() const { return height_; }
  bool HasColour() const { return hasColour_; }
  std::size_t PixelStep() const { return pixelStep_; }    // bytes from one pixel to the next
  std::size_t SampleStep() const { return sampleStep_; }  // bytes from one sample to the next

  // The bytes of row y of the area. Byte x * PixelStep() + s * SampleStep() is the high byte of sample s in column x.
  // The last byte of the span is the high byte of the last sample.
  std::span<const std::uint8_t> Row(std::size_t y) const {
    return pixels_.Run(top_ + y, first_, width_ * pixelStep_ - (sampleStep_ - 1));
  }

 private:
  std::size_t VisibleWidth() const;

  PixelView pixels_;
  std::size_t top_;
  std::size_t first_ = 0;  // byte of a row of pixels_: the high byte of the area's first sample
  std::size_t width_;
  std::size_t height_;
  std::size_t pixelStep_;
  std::size_t sampleStep_;
  bool hasColour_;
};

// Pixels of the working copy on a side of a colour cell.
inline constexpr std::size_t kCellSide = 4;

// The colour of a cell. Exchanging the first and the third sample turns the sign of `outer` and changes nothing else.
struct CellColour {
  std::int16_t outer;   // first minus third sample
  std::int16_t middle;  // twice the second minus the first and the third
  std::uint8_t chroma;  // largest minus smallest sample
};

struct WorkingCopy {
  std::size_t width = 0;           // pixels, at least kSmallestSide
  std::size_t height = 0;          // rows, at least kSmallestSide
  std::vector<std::uint8_t> grey;  // width x height tones, with the tone curve undone
  std::vector<CellColour> cells;   // (width / kCellSide) x (height / kCellSide); empty for a picture without colour

  PixelView Grey() const { return {grey.data(), height, width}; }
};

// Averages square blocks so that the longer side is at most about 900 pixels; a narrow strip may stay longer. Reads at
// most 4 x 4 evenly spaced pixels of a block. Throws std::bad_alloc.
WorkingCopy MakeWorkingCopy(const AnalysedArea& area);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_PICTURE_H_
